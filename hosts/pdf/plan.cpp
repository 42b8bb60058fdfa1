#include "plan.h"

#include "shapes.h"

namespace qz::pdf {
namespace {

constexpr size_t maxPairwise = 40;  // so many children are compared with each other

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
      return !leaf.pen.dashed;
    case Kind::kPicture:
      return true;
    default:
      return false;
  }
}

class Planner {
 public:
  explicit Planner(const Scene& scene) {
    const RECT& page = scene.page;
    page_ = {0, 0, static_cast<float>(page.right), static_cast<float>(page.bottom)};
    visit(scene.root, page_, 1);
  }

  Plan plan;

 private:
  void visit(const Node& node, const Box& clip, float alpha) {
    if (!node.bounds.meets(clip)) return;
    if (node.kind == Kind::kClip) return visitClip(node, clip, alpha);
    if (node.kind == Kind::kGroup) return visitGroup(node, clip, alpha);
    if (node.colour.alpha == 0 && node.kind != Kind::kEngine) return;
    if (!isSayable(node)) return addBitmap(node, clip);
    Item item = itemOf(node, clip);
    item.node = &node;
    item.alpha = alpha;
    if (!clip.grown(1).holds(node.bounds)) item.clip = clip.rounded();
    plan.items.push_back(item);
  }

  void visitClip(const Node& node, const Box& clip, float alpha) {
    const Path& path = std::get<Path>(node.content);
    Box inner = clip;
    if (const std::optional<Box> rectangle = asRectangle(path))
      inner = common(clip, *rectangle);
    else if (!covers(path, common(node.bounds, clip)))
      return addBitmap(node, clip);
    for (const Node& child : node.children) visit(child, inner, alpha);
  }

  void visitGroup(const Node& node, const Box& clip, float alpha) {
    if (node.blends || (node.alpha < 1 && (overlap(node) || !saysAlpha(node))))
      return addBitmap(node, clip);
    for (const Node& child : node.children) visit(child, clip, alpha * node.alpha);
  }

  // Only shapes and texts take an alpha.
  static bool saysAlpha(const Node& node) {
    if (node.kind == Kind::kPicture || node.kind == Kind::kEngine) return false;
    if (node.children.empty()) return isSayable(node);
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
    return item;
  }

  void addBitmap(const Node& node, const Box& clip) {
    Item item = itemOf(node, clip);
    const Calls calls = node.calls;
    if (!node.blends && extendLast(item, calls, clip)) return;
    lastClip_ = clip;
    item.bitmap = plan.bitmaps.size();
    if (clip != page_) item.clip = clip.rounded();
    plan.bitmaps.push_back({item.bounds, {calls}, node.blends});
    plan.items.push_back(item);
  }

  // Neighbours share a bitmap unless it would be much larger than they are.
  bool extendLast(const Item& item, Calls calls, const Box& clip) {
    if (plan.items.empty() || plan.items.back().node != nullptr) return false;
    Item& last = plan.items.back();
    RenderJob& job = plan.bitmaps[last.bitmap];
    if (lastClip_ != clip || job.onPage || last.field != item.field) return false;
    const auto area = [](const Box& box) { return (box.width() + 400) * (box.height() + 400); };
    Box both = last.bounds;
    both.include(item.bounds);
    if (area(both) > 2 * (area(last.bounds) + area(item.bounds))) return false;
    last.bounds = job.area = both;
    job.calls.push_back(calls);
    return true;
  }

  Box page_;
  Box lastClip_;  // of the last bitmap
};

}  // namespace

Plan makePlan(const Scene& scene) { return std::move(Planner(scene).plan); }

}  // namespace qz::pdf
