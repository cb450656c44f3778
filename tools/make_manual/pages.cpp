#include "make_manual/pages.h"

#include <string>

#include "base/error.h"

namespace vrx::manual {
namespace {

class PageBreaker {
 public:
  PageBreaker(const std::vector<Box>& boxes, double height) : boxes_(boxes), height_(height) {}

  std::vector<Page> Run() {
    for (std::size_t first = 0; first < boxes_.size();) {
      std::size_t behind = first + 1;
      while (behind < boxes_.size() && boxes_[behind - 1].keeps_next) {
        ++behind;
      }
      Place(first, behind);
      first = behind;
    }
    return std::move(pages_);
  }

 private:
  void Place(std::size_t first, std::size_t behind) {
    double needed = 0;
    for (std::size_t i = first; i < behind; ++i) {
      needed += boxes_[i].height + boxes_[i].before;
    }
    if (pages_.empty() || top_ + needed > height_) {
      NewPage(boxes_[first]);
      if (top_ + needed - boxes_[first].before > height_) {
        throw Error("what belongs together is higher than a page, from box " +
                    std::to_string(first));
      }
    }
    for (std::size_t i = first; i < behind; ++i) {
      Put(boxes_[i]);
    }
  }

  void NewPage(const Box& first) {
    pages_.emplace_back();
    top_ = 0;
    if (first.running_head != nullptr) {
      pages_.back().drawings.push_back({0, first.running_head->draw});
      top_ = first.running_head->height;
    }
  }

  void Put(const Box& box) {
    if (!pages_.back().drawings.empty()) {
      top_ += box.before;
    }
    pages_.back().drawings.push_back({top_, box.draw});
    if (box.heading >= 0) {
      pages_.back().headings.push_back(box.heading);
    }
    top_ += box.height;
  }

  const std::vector<Box>& boxes_;
  double height_;
  double top_ = 0;
  std::vector<Page> pages_;
};

}  // namespace

std::vector<Page> BreakPages(const std::vector<Box>& boxes, double height) {
  return PageBreaker(boxes, height).Run();
}

}  // namespace vrx::manual
