#include "engine.h"

#include <fstream>

#include "annotations.h"
#include "scene_device.h"

namespace qz::pdf {
namespace {

using OwnedDevice = Owned<fz_device, fz_drop_device>;

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

  std::vector<Widget> readWidgets(pdf_page* page, fz_matrix matrix, Scene& scene);
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

const std::vector<Shape>& Engine::shapes() const { return state_->glyphs.shapes(); }

std::vector<Widget> Engine::State::readWidgets(pdf_page* page, fz_matrix matrix, Scene& scene) {
  std::vector<Widget> widgets;
  pdf_annot* widget = nullptr;
  attempt(context, [&] { widget = pdf_first_widget(context, page); });
  while (widget != nullptr) {
    std::optional<Field> field = readField(context, widget, matrix);
    widgets.push_back({widget, field ? static_cast<int>(scene.fields.size()) : -1});
    if (field)
      scene.fields.push_back(std::move(*field));
    else
      ++scene.untypedFields;
    attempt(context, [&] { widget = pdf_next_widget(context, widget); });
  }
  return widgets;
}

Scene Engine::read(int number, int resolution) {
  State& state = *state_;
  fz_context* const context = state.context;
  pdf_document* const document = state.document.get();
  state.glyphs.trim();
  state.pictures.trim();
  if (!state.targets) state.targets = readTargets(context, document);

  Owned<fz_page, fz_drop_page> loaded(context);
  attempt(context, [&] { loaded.reset(fz_load_page(context, &document->super, number)); });
  pdf_page* const page = reinterpret_cast<pdf_page*>(loaded.get());
  const fz_matrix matrix = unitsMatrix(context, page);
  fz_rect bounds = fz_empty_rect;
  attempt(context,
          [&] { bounds = fz_transform_rect(fz_bound_page(context, &page->super), matrix); });
  if (!(bounds.x1 > 0 && bounds.y1 > 0 && bounds.x1 <= maxPageSide && bounds.y1 <= maxPageSide))
    throw EngineError("the page has no usable size");

  Scene scene;
  scene.number = number + 1;
  scene.page = toBox(bounds).rounded();
  scene.targets = (*state.targets)[static_cast<size_t>(number)];
  scene.links = readLinks(context, document, page, scene.droppedLinks);
  const std::vector<Widget> widgets = state.readWidgets(page, matrix, scene);

  SceneBuilder builder(state.glyphs, state.pictures);
  OwnedDevice device(context);
  fz_cookie cookie = {};
  attempt(context, [&] {
    device.reset(newSceneDevice(context, &builder, bounds, resolution));
    pdf_run_page_contents(context, page, device.get(), matrix, &cookie);
    pdf_run_page_annots(context, page, device.get(), matrix, &cookie);
    for (const Widget& widget : widgets) {
      builder.setField(widget.field);
      pdf_run_annot(context, widget.annotation, device.get(), matrix, &cookie);
    }
    fz_close_device(context, device.get());
  });
  scene.root = builder.finish();
  scene.bitmaps = builder.bitmaps();
  scene.damages = cookie.errors;
  return scene;
}

}  // namespace qz::pdf
