#include <gtest/gtest.h>

#include "desktop/app/captions.h"
#include "widgets/qt_text.h"

namespace vrx::testing {
namespace {

TEST(Language, TheFirstOneWithACatalogueIsUsed) {
  {
    const Language german({u"fr-FR"_qs, u"de-AT"_qs, u"es-ES"_qs});
    EXPECT_EQ(german.Code(), u"de"_qs);
    EXPECT_EQ(QTr("Cancel"), u"Abbrechen"_qs);
    EXPECT_EQ(Tr("Printing page %1 of %2", {"3", "7"}), "Seite 3 von 7 wird gedruckt");
  }
  const Language spanish({u"es_MX"_qs});
  EXPECT_EQ(spanish.Code(), u"es"_qs);
  EXPECT_EQ(QTr("Printed page"), u"Página impresa"_qs);
}

TEST(Language, EnglishIsUsedWithoutACatalogueAndBeforeALaterLanguage) {
  for (const QStringList& locales :
       {QStringList{}, QStringList{u"fr"_qs}, QStringList{u"en-US"_qs, u"de"_qs},
        QStringList{u"C"_qs, u"de"_qs}}) {
    const Language english(locales);
    EXPECT_EQ(english.Code(), u"en"_qs);
    EXPECT_EQ(QTr("Cancel"), u"Cancel"_qs);
  }
}

TEST(Language, ATextWithoutATranslationStays) {
  const Language german({u"de"_qs});
  EXPECT_EQ(QTr("&Open..."), u"&Open..."_qs);
}

TEST(Language, EndsWithTheObject) {
  { const Language german({u"de"_qs}); }
  EXPECT_EQ(QTr("Cancel"), u"Cancel"_qs);
}

}  // namespace
}  // namespace vrx::testing
