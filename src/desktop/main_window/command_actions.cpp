#include "desktop/main_window/command_actions.h"

#include <utility>

namespace vrx {

void CommandActions::Add(std::string_view name, MainCommand command, QAction& action) {
  const Entry& entry = entries_.emplace_back(Entry{std::string(name), command, &action, true});
  QObject::connect(&action, &QAction::triggered, [this, command] { Run(command); });
  Show(entry);
}

void CommandActions::SetHandler(MainCommand command, Handler handler) {
  handlers_[command] = std::move(handler);
  for (const Entry& entry : entries_) {
    Show(entry);
  }
}

void CommandActions::Turn(std::string_view name, bool on) {
  for (Entry& entry : entries_) {
    if (entry.name == name) {
      entry.on = on;
      Show(entry);
    }
  }
}

void CommandActions::Turn(MainCommand command, bool on) {
  for (Entry& entry : entries_) {
    if (entry.command == command) {
      entry.on = on;
      Show(entry);
    }
  }
}

void CommandActions::Tick(MainCommand command, bool on) const {
  for (const Entry& entry : entries_) {
    if (entry.command == command) {
      entry.action->setChecked(on);
    }
  }
}

void CommandActions::Show(const Entry& entry) const {
  const bool leads_somewhere =
      entry.command == MainCommand::kNone || handlers_.count(entry.command) > 0;
  entry.action->setEnabled(entry.on && leads_somewhere);
}

void CommandActions::Run(MainCommand command) const {
  const auto handler = handlers_.find(command);
  if (handler != handlers_.end()) {
    handler->second();
  }
}

}  // namespace vrx
