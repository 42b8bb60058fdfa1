#include "engine.h"

#include <fstream>

#include "annotations.h"
#include "scene_device.h"

namespace qz::pdf {
namespace {

using OwnedDevice = Owned<fz_device, fz_drop_device>;
using OwnedPixmap = Owned<fz_pixmap, fz_drop_pixmap>;
using OwnedBuffer = Owned<fz_buffer, fz_drop_buffer>;

constexpr size_t storeSize = 32 << 20;  // what MuPDF may keep of fonts and images
constexpr float maxPageSide = 200 * 72 * unitsPerPoint;

void checkFile(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) throw EngineError("does not exist");
  if (!std::filesystem::is_regular_file(path, error)) throw EngineError("is not a file");
  std::ifstream file(path, std::ios::binary);
  std::string head(1024, 0);
  file.read(head.data(), static_cast<std::streamsize>(head.size()));
  if (file.bad() || !file.is_open()) throw EngineError("cannot be read");
  if (head.find("%PDF-") == std::string::npos) throw EngineError("is not a PDF");
}

void ignoreMessage(void*, const char*) {}

// A widget that stands for no field is drawn as a part of the page.
struct Widget {
  pdf_annot* annotation;
  int field;
};

// The same calls in the same order, whatever the device.
void run(fz_context* context, pdf_page* page, const std::vector<Widget>& widgets, fz_device* device,
         fz_matrix matrix, SceneBuilder* builder, fz_cookie* cookie) {
  attempt(context, [&] {
    pdf_run_page_contents(context, page, device, matrix, cookie);
    pdf_run_page_annots(context, page, device, matrix, cookie);
    for (const Widget& widget : widgets) {
      if (builder != nullptr) builder->setField(widget.field);
      pdf_run_annot(context, widget.annotation, device, matrix, cookie);
    }
    fz_close_device(context, device);
  });
}

// Ends what is still open on a device.
void unwind(fz_context* context, fz_device* device) {
  while (device->container_len > 0) {
    switch (device->container[device->container_len - 1].type) {
      case fz_device_container_stack_is_clip:
        fz_pop_clip(context, device);
        break;
      case fz_device_container_stack_is_mask:
        fz_end_mask(context, device);
        break;
      case fz_device_container_stack_is_group:
        fz_end_group(context, device);
        break;
      default:
        fz_end_tile(context, device);
    }
  }
}

}  // namespace

struct Context {
  Context() : context(fz_new_context(nullptr, nullptr, storeSize)) {
    if (context == nullptr) throw EngineError("memory is exhausted");
    fz_set_warning_callback(context, ignoreMessage, nullptr);
    fz_set_error_callback(context, ignoreMessage, nullptr);
  }
  Context(const Context&) = delete;
  Context& operator=(const Context&) = delete;
  ~Context() { fz_drop_context(context); }

  fz_context* const context;
};

struct Engine::State : Context {
  Owned<pdf_document, pdf_drop_document> document{context};
  GlyphCache glyphs{context};
  PictureCache pictures{context};
  std::optional<std::vector<std::vector<Target>>> targets;  // of each page
  int pages = 0;

  // The page read last.
  Owned<fz_page, fz_drop_page> page{context};
  std::vector<Widget> widgets;
  fz_matrix matrix = fz_identity;

  pdf_page* pdfPage() const { return reinterpret_cast<pdf_page*>(page.get()); }
  void readWidgets(Scene& scene);
};

Engine::~Engine() = default;

Engine::Engine(const std::filesystem::path& file, const std::optional<std::string>& password) {
  checkFile(file);
  state_ = std::make_unique<State>();
  fz_context* const context = state_->context;
  const std::string name = file.string();
  attempt(context, [&] { state_->document.reset(pdf_open_document(context, name.c_str())); });
  pdf_document* const document = state_->document.get();
  int locked = 0;
  attempt(context, [&] {
    locked = pdf_needs_password(context, document);
    if (locked != 0 && password)
      locked = pdf_authenticate_password(context, document, password->c_str()) == 0;
  });
  if (locked != 0)
    throw EngineError(password ? "is encrypted, and the password is wrong"
                               : "is encrypted: give its password with --password-file");
  attempt(context, [&] { state_->pages = pdf_count_pages(context, document); });
  if (state_->pages < 1) throw EngineError("has no pages");
}

int Engine::pageCount() const { return state_->pages; }

bool Engine::wasRepaired() const {
  return pdf_was_repaired(state_->context, state_->document.get()) != 0;
}

const std::vector<Outline>& Engine::outlines() const { return state_->glyphs.outlines(); }

void Engine::State::readWidgets(Scene& scene) {
  widgets.clear();
  pdf_annot* widget = nullptr;
  attempt(context, [&] { widget = pdf_first_widget(context, pdfPage()); });
  while (widget != nullptr) {
    std::optional<Field> field = readField(context, widget, matrix);
    widgets.push_back({widget, field ? static_cast<int>(scene.fields.size()) : -1});
    if (field)
      scene.fields.push_back(std::move(*field));
    else
      ++scene.untypedFields;
    attempt(context, [&] { widget = pdf_next_widget(context, widget); });
  }
}

Scene Engine::read(int number) {
  State& state = *state_;
  fz_context* const context = state.context;
  pdf_document* const document = state.document.get();
  state.glyphs.trim();
  state.pictures.trim();
  state.widgets.clear();
  if (!state.targets) state.targets = readTargets(context, document);

  attempt(context, [&] { state.page.reset(fz_load_page(context, &document->super, number)); });
  pdf_page* const page = state.pdfPage();
  state.matrix = unitsMatrix(context, page);
  fz_rect bounds = fz_empty_rect;
  attempt(context,
          [&] { bounds = fz_transform_rect(fz_bound_page(context, &page->super), state.matrix); });
  if (!(bounds.x1 > 0 && bounds.y1 > 0 && bounds.x1 <= maxPageSide && bounds.y1 <= maxPageSide))
    throw EngineError("the page has no usable size");

  Scene scene;
  scene.page = toBox(bounds).rounded();
  scene.targets = (*state.targets)[static_cast<size_t>(number)];
  scene.links = readLinks(context, document, page, scene.droppedLinks);
  state.readWidgets(scene);

  SceneBuilder builder(state.glyphs, state.pictures);
  OwnedDevice device(context);
  fz_cookie cookie = {};
  attempt(context, [&] { device.reset(newSceneDevice(context, &builder)); });
  run(context, page, state.widgets, device.get(), state.matrix, &builder, &cookie);
  scene.root = builder.finish();
  scene.damages = cookie.errors;
  return scene;
}

std::vector<std::shared_ptr<const Picture>> Engine::render(std::vector<RenderJob>& jobs,
                                                           int resolution) {
  fz_context* const context = state_->context;
  const float scale = static_cast<float>(resolution) / 72 / unitsPerPoint;
  std::vector<std::unique_ptr<OwnedPixmap>> pixmaps;
  std::vector<std::unique_ptr<OwnedDevice>> devices;
  std::vector<RenderTarget> targets;
  for (RenderJob& job : jobs) {
    const fz_irect box = {static_cast<int>(std::floor(job.area.left * scale)),
                          static_cast<int>(std::floor(job.area.top * scale)),
                          static_cast<int>(std::ceil(job.area.right * scale)) + 1,
                          static_cast<int>(std::ceil(job.area.bottom * scale)) + 1};
    job.area = {static_cast<float>(box.x0) / scale, static_cast<float>(box.y0) / scale,
                static_cast<float>(box.x1) / scale, static_cast<float>(box.y1) / scale};
    OwnedPixmap& pixmap = *pixmaps.emplace_back(std::make_unique<OwnedPixmap>(context));
    OwnedDevice& device = *devices.emplace_back(std::make_unique<OwnedDevice>(context));
    attempt(context, [&] {
      pixmap.reset(fz_new_pixmap_with_bbox(context, fz_device_rgb(context), box, nullptr,
                                           job.onPage ? 0 : 1));
      if (job.onPage)
        fz_clear_pixmap_with_value(context, pixmap.get(), 255);
      else
        fz_clear_pixmap(context, pixmap.get());
      device.reset(fz_new_draw_device(context, fz_identity, pixmap.get()));
    });
    targets.push_back({&job.calls, device.get(), fz_scale(scale, scale), 0, job.onPage});
  }
  std::stable_partition(targets.begin(), targets.end(),
                        [](const RenderTarget& target) { return target.onPage; });

  OwnedDevice device(context);
  fz_cookie cookie = {};
  attempt(context, [&] { device.reset(newRenderDevice(context, &targets)); });
  run(context, state_->pdfPage(), state_->widgets, device.get(), state_->matrix, nullptr, &cookie);

  std::vector<std::shared_ptr<const Picture>> pictures;
  for (size_t i = 0; i < jobs.size(); ++i) {
    OwnedBuffer file(context);
    unsigned char* bytes = nullptr;
    size_t size = 0;
    attempt(context, [&] {
      unwind(context, devices[i]->get());
      fz_close_device(context, devices[i]->get());
      file.reset(
          fz_new_buffer_from_pixmap_as_png(context, pixmaps[i]->get(), fz_default_color_params));
      size = fz_buffer_storage(context, file.get(), &bytes);
    });
    pictures.push_back(std::make_shared<const Picture>(
        Picture{qzsvggen::ImageFormat::kPng, std::string(bytes, bytes + size)}));
  }
  return pictures;
}

}  // namespace qz::pdf
