#include "make_manual/span_parser.h"

#include <string>
#include <utility>

#include "base/error.h"

namespace vrx::manual {
namespace {

class SpanParser {
 public:
  explicit SpanParser(std::string_view text) : text_(text) {}

  Spans Run() {
    while (at_ < text_.size()) {
      Step();
    }
    EndPlain();
    if (quoting_) {
      throw Error("a quotation is not closed");
    }
    return std::move(spans_);
  }

 private:
  void Step() {
    if (Take("\\")) {
      if (at_ == text_.size()) {
        throw Error("nothing follows the backslash");
      }
      plain_ += text_[at_++];
    } else if (Take("**")) {
      Add(SpanStyle::kCaption, Upto("**"));
    } else if (Take("*")) {
      Add(SpanStyle::kVariable, Upto("*"));
    } else if (Take("`")) {
      Add(SpanStyle::kCode, Upto("`"));
    } else if (Take("<br>")) {
      Add(SpanStyle::kLineBreak, {});
    } else if (Take("[")) {
      AddLink();
    } else if (Take("\"")) {
      EndPlain();
      quoting_ = !quoting_;
      quotes_ += quoting_ ? 1 : 0;
    } else {
      plain_ += text_[at_++];
    }
  }

  void AddLink() {
    std::string title = Upto("]");
    if (!Take("(")) {
      throw Error("a link has no chapter: [" + title + "]");
    }
    Add(SpanStyle::kLink, std::move(title));
    spans_.back().target = Upto(")");
  }

  bool Take(std::string_view mark) {
    if (text_.substr(at_, mark.size()) != mark) {
      return false;
    }
    at_ += mark.size();
    return true;
  }

  // Verbatim but for escaped characters; in code a backslash is one.
  std::string Upto(std::string_view mark) {
    std::string inner;
    while (!Take(mark)) {
      if (mark != "`" && Take("\\")) {
        // the next one as it stands
      }
      if (at_ >= text_.size()) {
        throw Error("\"" + std::string(mark) + "\" is missing behind \"" + inner + "\"");
      }
      inner += text_[at_++];
    }
    if (inner.empty()) {
      throw Error("nothing stands ahead of \"" + std::string(mark) + "\"");
    }
    return inner;
  }

  void Add(SpanStyle style, std::string text) {
    EndPlain();
    spans_.push_back({style, std::move(text), quoting_ ? quotes_ : 0, {}});
  }

  void EndPlain() {
    if (!plain_.empty()) {
      spans_.push_back({SpanStyle::kPlain, std::exchange(plain_, {}), quoting_ ? quotes_ : 0, {}});
    }
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::string plain_;
  bool quoting_ = false;
  int quotes_ = 0;
  Spans spans_;
};

}  // namespace

Spans ParseSpans(std::string_view text) { return SpanParser(text).Run(); }

}  // namespace vrx::manual
