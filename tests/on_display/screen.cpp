#include "on_display/screen.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstring>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace vrx::testing {
namespace {

using Json = nlohmann::json;
using Clock = std::chrono::steady_clock;
using Ms = std::chrono::milliseconds;

class Socket {
 public:
  Socket() : descriptor_(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
  ~Socket() { close(descriptor_); }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  int Get() const { return descriptor_; }
  bool Connect(const std::string& path) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(static_cast<char*>(address.sun_path), sizeof address.sun_path - 1);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): the interface's own way
    return connect(descriptor_, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
  }

 private:
  int descriptor_;
};

// What comes until the end of the stream; empty when that does not come within the limit.
std::string Received(int descriptor, Ms limit) {
  const Clock::time_point end = Clock::now() + limit;
  std::string all;
  std::array<char, 65536> buffer{};
  for (;;) {
    const auto left = std::chrono::duration_cast<Ms>(end - Clock::now());
    pollfd wanted{.fd = descriptor, .events = POLLIN, .revents = 0};
    if (left <= Ms{0} || poll(&wanted, 1, static_cast<int>(left.count())) <= 0) {
      return {};
    }
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count <= 0) {
      return count == 0 ? all : std::string();
    }
    all.append(buffer.data(), static_cast<std::size_t>(count));
  }
}

std::string WithoutMnemonic(std::string caption) {
  std::erase(caption, '&');
  return caption;
}

Rect PlaceOf(const Json& part) {
  return {
      .x = part.at("x"), .y = part.at("y"), .width = part.at("width"), .height = part.at("height")};
}

Widget WidgetOf(const Json& part) {
  Widget widget{.name = part.at("name"),
                .kind = part.at("class"),
                .text = part.at("text"),
                .window = part.at("window"),
                .behind_dialog = part.at("modal"),
                .enabled = part.at("enabled"),
                .focus = part.at("focus"),
                .checked = part.at("checked"),
                .place = PlaceOf(part),
                .items = {},
                .cells = {},
                .menu_depth = part.value("menuDepth", -1),
                .rows = part.value("rows", 0),
                .columns = part.value("columns", 0)};
  for (const Json& item : part.value("items", Json::array())) {
    widget.items.push_back({.text = WithoutMnemonic(item.at("text")),
                            .enabled = item.at("enabled"),
                            .checked = item.at("checked"),
                            .place = PlaceOf(item)});
  }
  for (const Json& cell : part.value("cells", Json::array())) {
    widget.cells.push_back({.row = cell.at("row"),
                            .column = cell.at("column"),
                            .text = cell.at("text"),
                            .current = cell.at("current"),
                            .place = PlaceOf(cell)});
  }
  return widget;
}

}  // namespace

const Item* Widget::FindItem(const std::string& caption) const {
  const auto found = std::find_if(items.begin(), items.end(),
                                  [&](const Item& item) { return item.text == caption; });
  return found == items.end() ? nullptr : &*found;
}

const Cell* Widget::FindCell(int row, int column) const {
  const auto found = std::find_if(cells.begin(), cells.end(), [&](const Cell& cell) {
    return cell.row == row && cell.column == column;
  });
  return found == cells.end() ? nullptr : &*found;
}

Screen Screen::Of(const std::filesystem::path& socket, Ms limit) {
  Screen screen;
  const Socket connection;
  if (!connection.Connect(socket.string())) {
    return screen;
  }
  const Json described = Json::parse(Received(connection.Get(), limit), nullptr, false);
  if (!described.is_discarded()) {
    for (const Json& part : described.at("widgets")) {
      screen.widgets_.push_back(WidgetOf(part));
    }
  }
  return screen;
}

const Widget* Screen::Find(const std::string& name) const {
  const auto found = std::find_if(widgets_.begin(), widgets_.end(),
                                  [&](const Widget& widget) { return widget.name == name; });
  return found == widgets_.end() ? nullptr : &*found;
}

const Widget* Screen::Focus() const {
  const auto found = std::find_if(widgets_.begin(), widgets_.end(),
                                  [](const Widget& widget) { return widget.focus; });
  return found == widgets_.end() ? nullptr : &*found;
}

// Open menus cover the rest.
const Item* Screen::FindItem(const std::string& caption) const {
  const Item* found = FindItemOfMenu(caption);
  for (auto widget = widgets_.begin(); found == nullptr && widget != widgets_.end(); ++widget) {
    found = widget->FindItem(caption);
  }
  return found;
}

const Item* Screen::FindItemOfMenu(const std::string& caption, int depth) const {
  for (const Widget& widget : widgets_) {
    const Item* const found = widget.menu_depth == depth ? widget.FindItem(caption) : nullptr;
    if (found != nullptr) {
      return found;
    }
  }
  return nullptr;
}

const Widget* Screen::FindButton(const std::string& caption) const {
  const auto found = std::find_if(widgets_.begin(), widgets_.end(), [&](const Widget& widget) {
    return !widget.behind_dialog && WithoutMnemonic(widget.text) == caption &&
           widget.kind.find("Button") != std::string::npos;
  });
  return found == widgets_.end() ? nullptr : &*found;
}

std::string Screen::BoxText() const {
  for (const Widget& widget : widgets_) {
    if (widget.kind == "QMessageBox" && !widget.behind_dialog) {
      return widget.text;
    }
  }
  return {};
}

}  // namespace vrx::testing
