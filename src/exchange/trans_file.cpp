#include "exchange/trans_file.h"

#include "base/files.h"
#include "base/text.h"
#include "exchange/transaction_parser.h"
#include "settings/settings.h"

namespace vrx {

bool TransFile::LoadTransactionFile(Operator& op,
                                    const std::function<void()>& focus_import_button) {
  MessageBox box{.icon = Icon::kWarning, .title = "Import Error", .text = {}};
  if (path_.empty()) {
    box.text = "Please select a transaction (.QXT) file to import.";
    if (focus_import_button) {
      focus_import_button();
    }
  } else if (!FileExists(path_)) {
    box.text = "Could not find transaction file.";
  } else {
    try {
      std::string text = ReadFileBytes(path_, kMaxTransactionFile);
      if (text.size() <= kMaxTransactionFile) {
        text_ = std::move(text);
        return true;
      }
      box.text = "Transaction file data exceeds maximum limit of " +
                 std::to_string(kMaxTransactionFile) + " characters.";
    } catch (const FileError& error) {
      box.text = "Could not read transaction file.";
      box.cause = error.what();
    }
  }
  op.ShowMessage(box);
  return false;
}

void TransFile::ClearImport() {
  imported_.Resize(0);
  record_count_ = 0;
  transaction_count_ = 0;
}

std::string TransFile::ParseTransactionFile(ProgressDisplay& progress, const ImportHooks& hooks,
                                            Operator& op, const PrivateINI& settings) {
  TransactionParser parser(text_, *this, imported_, progress, hooks,
                           [&] { BeepIfEnabled(op, settings); });
  return parser.Run();
}

}  // namespace vrx
