#include <array>
#include <cstddef>

#include "base/translation.h"
#include "presenter/insight_run.h"

namespace vrx {
namespace {

using enum AccuracyKey;

constexpr InsightTableChoice By(std::string_view caption, AccuracyKey key) {
  return {.caption = caption, .rows = InsightRows::kGroups, .keys = {key}, .key_count = 1};
}

constexpr std::array<InsightTableChoice, 9> kLoadingTables{{
    By(TrMark("By ingredient"), kIngredient),
    By(TrMark("By recipe"), kRecipe),
    By(TrMark("By operator"), kOperator),
    {.caption = TrMark("By ingredient and operator"),
     .rows = InsightRows::kGroups,
     .keys = {kIngredient, kOperator},
     .key_count = 2},
    By(TrMark("By day"), kDay),
    By(TrMark("By week"), kWeek),
    By(TrMark("By month"), kMonth),
    {.caption = TrMark("Not loaded"), .rows = InsightRows::kNotLoaded},
    {.caption = TrMark("Largest deviations"), .rows = InsightRows::kLargest},
}};
constexpr std::array<InsightTableChoice, 7> kDeliveryTables{{
    By(TrMark("By pen"), kPen),
    By(TrMark("By recipe"), kRecipe),
    By(TrMark("By operator"), kOperator),
    By(TrMark("By day"), kDay),
    By(TrMark("By week"), kWeek),
    By(TrMark("By month"), kMonth),
    {.caption = TrMark("Largest deviations"), .rows = InsightRows::kLargest},
}};
constexpr std::array<InsightTableChoice, 3> kBalanceTables{{
    {.caption = TrMark("Out of balance"), .rows = InsightRows::kOutOfBalance},
    {.caption = TrMark("All batches"), .rows = InsightRows::kBatches},
    {.caption = TrMark("By day"), .rows = InsightRows::kDays},
}};
constexpr std::array<InsightTableChoice, 3> kTimesTables{{
    {.caption = TrMark("By recipe"), .rows = InsightRows::kRecipes},
    {.caption = TrMark("By operator"), .rows = InsightRows::kOperators},
    {.caption = TrMark("All batches"), .rows = InsightRows::kBatches},
}};
constexpr std::array<InsightTableChoice, 2> kTraceTables{{
    {.caption = TrMark("Where an ingredient went"), .rows = InsightRows::kOfIngredient},
    {.caption = TrMark("What a pen was fed"), .rows = InsightRows::kOfPen},
}};
constexpr std::array<InsightTableChoice, 1> kOneTable{};

constexpr std::array<InsightPictureChoice, 4> kLoadingPictures{{
    {TrMark("Deviation over time"), InsightPicture::kDeviations,
     TrMark("Each dot is a load: how far it was from its target, in percent. The band is the "
            "limit; the line is the median of each day.")},
    {TrMark("Distribution"), InsightPicture::kDistribution,
     TrMark("How many loads were how far from their target. The band is the limit; the line is "
            "the median.")},
    {TrMark("Ingredient by operator"), InsightPicture::kOperators,
     TrMark("The share of an operator's loads that is within the limit. Compare operators within "
            "an ingredient only; a field is blank below 20 loads.")},
    {TrMark("Where the weight goes"), InsightPicture::kWeights,
     TrMark("The amounts of all differences of an ingredient, added; the line is the running "
            "share of all ingredients.")},
}};
constexpr std::array<InsightPictureChoice, 2> kDeliveryPictures{{
    {TrMark("Deviation over time"), InsightPicture::kDeviations,
     TrMark("Each dot is a delivery: how far it was from what was called for, in percent. The "
            "band is the limit; the line is the median of each day.")},
    {TrMark("Distribution"), InsightPicture::kDistribution,
     TrMark("How many deliveries were how far from what was called for. The band is the limit; "
            "the line is the median.")},
}};
constexpr std::array<InsightPictureChoice, 1> kBalancePictures{
    {{TrMark("Balance of each batch"), InsightPicture::kBalance,
      TrMark("Each mark is a batch: what was loaded less what was fed. Above zero feed is left, "
             "below zero more was fed than loaded.")}}};
constexpr std::array<InsightPictureChoice, 1> kDeliveredPictures{
    {{TrMark("Days of a pen"), InsightPicture::kDelivered,
      TrMark("What the pen of the selected row was called for and fed, day by day, with the mean "
             "of seven days. A cross is a missed day.")}}};

constexpr unsigned kIngredientAndPen = FlagOf(NameKind::kIngredient) | FlagOf(NameKind::kPen);

constexpr std::array<InsightTopicRow, kInsightTopics> kTopics{{
    {TrMark("Accuracy of loading"),
     TrMark("How close to its target is each ingredient loaded, and by whom?"),
     "accuracy-of-loading", kAllNameKinds, true, kLoadingTables, kLoadingPictures},
    {TrMark("Accuracy of delivery"), TrMark("How close to what was called for is each pen fed?"),
     "accuracy-of-delivery", kAllNameKinds, true, kDeliveryTables, kDeliveryPictures},
    {TrMark("Balance"), TrMark("Is everything fed that was loaded?"), "balance", kAllNameKinds,
     true, kBalanceTables, kBalancePictures},
    {TrMark("Times"),
     TrMark("How long do preparing, waiting and feeding take?"),
     "times",
     kAllNameKinds,
     true,
     kTimesTables,
     {}},
    {TrMark("Called and delivered"), TrMark("What was each pen called for and fed, day by day?"),
     "called-and-delivered", kAllNameKinds, true, kOneTable, kDeliveredPictures},
    {TrMark("Trace"),
     TrMark("Where did an ingredient go, and what was a pen fed?"),
     "trace",
     kAllNameKinds,
     true,
     kTraceTables,
     {}},
    {TrMark("Holding"),
     TrMark("How long has each pen been fed without an ingredient?"),
     "holding",
     kIngredientAndPen,
     false,
     kOneTable,
     {}},
    {TrMark("Completeness"),
     TrMark("Is everything stored, and nothing twice?"),
     "completeness",
     0,
     true,
     kOneTable,
     {}},
    {TrMark("Use and cost"),
     TrMark("How much of each ingredient was used?"),
     "use-and-cost",
     kAllNameKinds,
     true,
     kOneTable,
     {}},
}};

}  // namespace

const InsightTopicRow& RowOf(InsightTopic topic) {
  return kTopics.at(static_cast<std::size_t>(topic));
}

const InsightTableChoice& InsightAsked::Table() const {
  return RowOf(topic).tables[static_cast<std::size_t>(table)];
}

InsightPicture InsightAsked::Picture() const {
  const auto pictures = RowOf(topic).pictures;
  return pictures.empty() ? InsightPicture::kNone
                          : pictures[static_cast<std::size_t>(picture)].picture;
}

}  // namespace vrx
