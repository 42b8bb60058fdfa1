#include "plan.h"

#include "shapes.h"

namespace qz::pdf {
namespace {

constexpr size_t maxPairwise = 40;  // so many children are compared with each other
constexpr size_t maxParts = 500;    // of an SVG picture

// Whether painting what a node holds one by one may differ from painting it as one.
bool overlap(const Node& node) {
  const std::vector<Node>& children = node.children;
  if (children.size() > maxPairwise) return true;
  for (size_t i = 0; i < children.size(); ++i) {
    if (overlap(children[i])) return true;
    for (size_t j = 0; j < i; ++j)
      if (children[i].bounds.meets(children[j].bounds)) return true;
  }
  return false;
}

bool isSayable(const Node& leaf) {
  switch (leaf.kind) {
    case Kind::kFill: {
      const Path& path = std::get<Path>(leaf.content);
      return !leaf.evenOdd || fillRulesAgree(path);
    }
    case Kind::kStroke:
      return strokesDirectly(std::get<Path>(leaf.content), leaf.pen);
    case Kind::kText:
      return leaf.pen.dashCount == 0 && leaf.pen.circular;
    case Kind::kPicture:
      return leaf.alpha == 1 && std::get<PlacedPicture>(leaf.content).plain;
    default:
      return false;
  }
}

class Planner {
 public:
  explicit Planner(const Scene& scene) : scene_(scene) {
    const RECT& page = scene.page;
    page_ = {0, 0, static_cast<float>(page.right), static_cast<float>(page.bottom)};
    visit(scene.root, page_, 1);
    flushPicture();
  }

  Plan plan;

 private:
  void visit(const Node& node, const Box& clip, float alpha) {
    if (!node.bounds.meets(clip)) return;
    if (node.kind == Kind::kClip) return visitClip(node, clip, alpha);
    if (node.kind == Kind::kGroup) return visitGroup(node, clip, alpha);
    if (node.colour.alpha == 0) return;
    if (!isSayable(node)) return addToPicture(node, clip, alpha);
    Item item = itemOf(node, clip);
    item.node = &node;
    item.alpha = alpha;
    if (!clip.grown(1).holds(node.bounds)) item.clip = clip.rounded();
    add(item);
  }

  void visitClip(const Node& node, const Box& clip, float alpha) {
    const Path& path = std::get<Path>(node.content);
    Box inner = clip;
    if (const std::optional<Box> rectangle = asRectangle(path))
      inner = common(clip, *rectangle);
    else if (!covers(path, common(node.bounds, clip)))
      return addToPicture(node, clip, alpha);
    for (const Node& child : node.children) visit(child, inner, alpha);
  }

  void visitGroup(const Node& node, const Box& clip, float alpha) {
    if (node.blendMode != nullptr || (node.alpha < 1 && (overlap(node) || !saysAlpha(node))))
      return addToPicture(node, clip, alpha);
    for (const Node& child : node.children) visit(child, clip, alpha * node.alpha);
  }

  // Only shapes and texts take an alpha.
  static bool saysAlpha(const Node& node) {
    if (node.kind == Kind::kPicture) return false;
    if (node.children.empty()) return isSayable(node);
    if (node.kind == Kind::kMask || node.kind == Kind::kTile) return false;
    if (node.kind == Kind::kClip) {
      const Path& path = std::get<Path>(node.content);
      if (!asRectangle(path) && !covers(path, node.bounds)) return false;
    }
    return std::all_of(node.children.begin(), node.children.end(), saysAlpha);
  }

  Item itemOf(const Node& node, const Box& clip) const {
    Item item;
    item.bounds = common(node.bounds, clip);
    item.field = node.field;
    if (node.field >= 0) return item;
    for (size_t i = 0; i < scene_.links.size() && item.link < 0; ++i)
      if (scene_.links[i].bounds.grown(unitsPerPoint).holds(item.bounds))
        item.link = static_cast<int32_t>(i);
    return item;
  }

  // What touches nothing of the picture that is being collected may be drawn before it.
  void add(const Item& item) {
    const bool passes = pending_.bounds.empty() || !pending_.bounds.meets(item.bounds) ||
                        std::none_of(pendingBoxes_.begin(), pendingBoxes_.end(),
                                     [&](const Box& box) { return box.meets(item.bounds); });
    if (!passes || item.field != pending_.field) flushPicture();
    plan.items.push_back(item);
  }

  void flushPicture() {
    if (!pendingBoxes_.empty()) plan.items.push_back(pending_);
    pendingBoxes_.clear();
    pending_ = {};
  }

  void addToPicture(const Node& node, const Box& clip, float alpha) {
    const Item item = itemOf(node, clip);
    if (pendingBoxes_.size() >= maxParts || item.field != pending_.field ||
        item.link != pending_.link)
      flushPicture();
    if (pendingBoxes_.empty()) {
      pending_ = item;
      pending_.picture = plan.pictures.size();
      plan.pictures.emplace_back();
    }
    pending_.bounds.include(item.bounds);
    pendingBoxes_.push_back(item.bounds);
    plan.pictures[pending_.picture].push_back({&node, clip, alpha});
  }

  const Scene& scene_;
  Box page_;
  Item pending_;                   // the picture that is being collected
  std::vector<Box> pendingBoxes_;  // of its parts
};

}  // namespace

Plan makePlan(const Scene& scene) { return std::move(Planner(scene).plan); }

}  // namespace qz::pdf
