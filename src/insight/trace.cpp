#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "database/connection.h"
#include "insight/accuracy_figures.h"
#include "insight/pens.h"
#include "insight/record_reader.h"

namespace vrx {
namespace {

struct TracedDelivery {
  NameId pen = kNoName;
  NameId operator_id = kNoName;
  DayNumber day = kNoDay;
  Exact actual = {};
};

struct TracedBatch {
  Exact loaded = {};
  Exact fed = {};
  std::vector<std::pair<NameId, Exact>> ingredients = {};  // weight of each, in order of loading
  std::vector<TracedDelivery> deliveries = {};

  Exact& WeightOf(NameId ingredient) {
    auto found = std::find_if(ingredients.begin(), ingredients.end(),
                              [=](const auto& entry) { return entry.first == ingredient; });
    if (found == ingredients.end()) {
      found = ingredients.insert(ingredients.end(), {ingredient, Exact()});
    }
    return found->second;
  }

  void Add(const Record& record) {
    if (record.is_load) {
      loaded += record.actual;
      WeightOf(record.ingredient) += record.actual;
    } else {
      fed += record.actual;
      deliveries.push_back({record.pen, record.operator_id, record.day, record.actual});
    }
  }
};

// Reads the batches of a question and makes the lines of each.
class Tracer {
 public:
  Tracer(SQLite::Database& database, const Question& question, const InsightProgress& progress)
      : reader_(database, question, progress) {}

  RecordReader& Reader() { return reader_; }

  template <typename AddLines>
  Trace Read(AddLines add_lines) {
    reader_.Read(kReadBoth | kReadBatch | kReadRecipe | kReadOperator | kReadIngredient | kReadPen |
                     kReadWeights | kReadDate,
                 [this](const Record& record) {
                   batches_.resize(reader_.Batches().size());
                   batches_[record.batch].Add(record);
                 });
    for (const std::uint32_t index : reader_.BatchesInOrder()) {
      if (index < batches_.size()) {
        add_lines(reader_.Batches()[index], batches_[index]);
      }
    }
    trace_.notes = reader_.Notes();
    return std::move(trace_);
  }

  // A line of an amount of a batch: of a delivery, or of what stayed.
  TraceLine& AddLine(const Batch& batch, NameId operator_id, DayNumber day) {
    return trace_.lines.emplace_back(
        TraceLine{.transaction = batch.number,
                  .date = ToDate(day),
                  .recipe = reader_.NamesOf(NameKind::kRecipe).Name(batch.recipe),
                  .operator_id = reader_.NamesOf(NameKind::kOperator).Name(operator_id)});
  }

  TraceLine& AddDelivery(const Batch& batch, const TracedDelivery& delivery) {
    TraceLine& line = AddLine(batch, delivery.operator_id, delivery.day);
    line.pen = reader_.NamesOf(NameKind::kPen).Name(delivery.pen);
    return line;
  }

  void SetIngredient(TraceLine& line, NameId ingredient, const Exact& weight,
                     const TracedBatch& batch, const Exact& amount) {
    line.ingredient = reader_.NamesOf(NameKind::kIngredient).Name(ingredient);
    if (batch.loaded.Sign() > 0) {
      line.weight = Quotient(weight * amount, batch.loaded);
      line.share = Percent(weight, batch.loaded);
    }
  }

 private:
  RecordReader reader_;
  std::vector<TracedBatch> batches_;
  Trace trace_;
};

}  // namespace

Trace TraceIngredient(SQLite::Database& database, const Question& question,
                      const InsightProgress& progress) {
  if (!question.ingredient) {
    throw QuestionError("a trace forward is of an ingredient");
  }
  return WithDatabaseErrors(database, [&] {
    Tracer tracer(database, question, progress);
    const NameId ingredient = tracer.Reader().IdOf(question.ingredient, NameKind::kIngredient);
    const NameId pen = tracer.Reader().IdOf(question.pen, NameKind::kPen);
    return tracer.Read([&](const Batch& batch, TracedBatch& traced) {
      const Exact weight = traced.WeightOf(ingredient);
      for (const TracedDelivery& delivery : traced.deliveries) {
        if (pen == kNoName || delivery.pen == pen) {
          tracer.SetIngredient(tracer.AddDelivery(batch, delivery), ingredient, weight, traced,
                               delivery.actual);
        }
      }
      TraceLine& stayed = tracer.AddLine(batch, batch.operator_id, batch.day);
      stayed.stayed = true;
      tracer.SetIngredient(stayed, ingredient, weight, traced, traced.loaded - traced.fed);
    });
  });
}

Trace TracePen(SQLite::Database& database, const Question& question,
               const InsightProgress& progress) {
  if (!question.pen) {
    throw QuestionError("a trace backward is of a pen");
  }
  return WithDatabaseErrors(database, [&] {
    Tracer tracer(database, question, progress);
    const NameId pen = tracer.Reader().IdOf(question.pen, NameKind::kPen);
    const NameId ingredient = tracer.Reader().IdOf(question.ingredient, NameKind::kIngredient);
    return tracer.Read([&](const Batch& batch, TracedBatch& traced) {
      const Names& names = tracer.Reader().NamesOf(NameKind::kIngredient);
      std::sort(traced.ingredients.begin(), traced.ingredients.end(),
                [&](const auto& left, const auto& right) {
                  return names.Text(left.first) < names.Text(right.first);
                });
      for (const TracedDelivery& delivery : traced.deliveries) {
        if (delivery.pen != pen) {
          continue;
        }
        if (traced.ingredients.empty()) {
          tracer.AddDelivery(batch, delivery);
        }
        for (const auto& [loaded, weight] : traced.ingredients) {
          if (ingredient == kNoName || loaded == ingredient) {
            tracer.SetIngredient(tracer.AddDelivery(batch, delivery), loaded, weight, traced,
                                 delivery.actual);
          }
        }
      }
    });
  });
}

}  // namespace vrx
