#include "page_job.h"

namespace qz::pdf {

Answer PageJob::operator()(int page) {
  if (!engine_) engine_ = std::make_shared<Engine>(options_.input, options_.password);
  if (page != describeDocument) return draw(page);
  Answer answer;
  answer.pageCount = engine_->pageCount();
  answer.damaged = engine_->wasRepaired();
  return answer;
}

Answer PageJob::draw(int page) {
  const Scene scene = engine_->read(page, options_.resolution);
  const Plan plan = makePlan(scene);
  const std::u16string document =
      writePage(scene, plan, engine_->outlines(), engine_->shapes(), options_.text);
  const std::string text =
      options_.exact ? qzsvggen::toUtf8(document) : inPoints(document, scene.page);
  folder_.write(pageName(page, engine_->pageCount()), [&](std::ostream& file) { file << text; });
  Answer answer;
  answer.damaged = scene.damages > 0;
  answer.bitmaps = scene.bitmaps;
  answer.pictures = static_cast<int>(plan.pictures.size());
  answer.droppedLinks = scene.droppedLinks;
  answer.untypedFields = scene.untypedFields;
  answer.bytes = text.size();
  return answer;
}

}  // namespace qz::pdf
