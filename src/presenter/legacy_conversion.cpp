#include "presenter/legacy_conversion.h"

#include <exception>
#include <string>

#include "base/files.h"
#include "base/translation.h"
#include "database/connection.h"
#include "database/identity.h"
#include "legacy/convert.h"
#include "legacy/jet_file.h"
#include "presenter/create_database.h"
#include "presenter/report_failure.h"

namespace vrx {

namespace fs = std::filesystem;

namespace {

using Outcome = LegacyOpening::Outcome;

// An unreadable file is not treated as legacy; opening it reports the error.
JetFileKind KindOfFile(const fs::path& path) {
  try {
    std::error_code ignored;
    return fs::is_regular_file(path, ignored) ? InspectJetFile(path) : JetFileKind::kOther;
  } catch (const FileError&) {
    return JetFileKind::kOther;
  }
}

FailureReport ConversionFailure(const std::exception& failure) {
  if (dynamic_cast<const ConversionStopped*>(&failure) != nullptr) {
    return kNoReport;
  }
  return {.title = kConversionErrorTitle,
          .text = IsDatabaseError(failure) ? FailureText::kErrorNumber : FailureText::kMessage};
}

// Shows the progress dialog during its lifetime.
class Progress {
 public:
  explicit Progress(ConversionDisplay& display) : display_(display) { display_.BeginProgress(); }
  ~Progress() { display_.EndProgress(); }
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

 private:
  ConversionDisplay& display_;
};

}  // namespace

LegacyOpening ConversionOffer::Offer(DatabaseKind kind, const fs::path& path) {
  const JetFileKind file = KindOfFile(path);
  if (!IsJetFile(file)) {
    return {.outcome = Outcome::kGoOn};
  }
  if (file != JetFileKind::kJet4) {
    Refuse(JetFileRefusal(file, path.filename().string()));
    return {.outcome = Outcome::kEnd};
  }
  if (!Asked()) {
    return {.outcome = Outcome::kGoOn};
  }
  const std::optional<fs::path> copy = AskCopy(kind);
  if (!copy || !Convert(kind, path, *copy)) {
    return {.outcome = Outcome::kEnd};
  }
  return {.outcome = Outcome::kOpenCopy, .copy = *copy};
}

bool ConversionOffer::Asked() {
  return services_.op.ShowMessage(
             {.icon = Icon::kQuestion,
              .buttons = Buttons::kYesNo,
              .title = std::string(kConversionTitle),
              .text = Tr("This database was made by an earlier version of the program. Convert a "
                         "copy of it and open the copy?")}) == Answer::kYes;
}

std::optional<fs::path> ConversionOffer::AskCopy(DatabaseKind kind) {
  const KindTexts& words = TextsOf(kind);
  while (true) {
    const FileChoice choice =
        services_.files.ShowSave({.title = Tr("Save Converted Copy As..."),
                                  .filter = std::string(words.filter),
                                  .default_extension = std::string(words.extension),
                                  .start_folder = services_.folder.DefaultAppPath().string(),
                                  .flags = kShortNames | kHideReadOnly});
    if (choice.Cancelled()) {
      return std::nullopt;
    }
    if (!AcceptDatabaseName(choice.title, services_.op)) {
      continue;
    }
    if (!FileExists(choice.path)) {
      return choice.path;
    }
    Refuse(
        Tr("A file by the name %1 already exists. Choose another name: the copy does not replace "
           "a file.",
           {choice.title}));
  }
}

bool ConversionOffer::Convert(DatabaseKind kind, const fs::path& old_file, const fs::path& copy) {
  ConversionReport report;
  const bool converted = RunReported(services_.op, ConversionFailure, [&] {
    const Progress progress(display_);
    report = ConvertLegacyDatabase({.old_file = old_file,
                                    .new_file = copy,
                                    .program_directory = services_.system.ProgramDirectory(),
                                    .default_unit = services_.settings.SystemUnits(),
                                    .kind = kind},
                                   services_.programs, display_, [this] {
                                     services_.pump.Pump(Milliseconds{0});
                                     return !services_.pump.Closing() && !display_.Cancelled();
                                   });
  });
  if (!converted) {
    return false;
  }
  display_.ShowReport(ReportText(report), copy.stem().string() + ".TXT");
  return !services_.pump.Closing();
}

void ConversionOffer::Refuse(std::string_view text) {
  services_.op.ShowMessage({.icon = Icon::kCritical,
                            .title = std::string(kConversionErrorTitle),
                            .text = std::string(text)});
}

}  // namespace vrx
