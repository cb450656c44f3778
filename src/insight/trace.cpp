#include <algorithm>
#include <cstddef>
#include <map>
#include <utility>

#include "insight/accuracy_figures.h"
#include "insight/pens.h"
#include "insight/record_parts.h"
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

// The lines of some batches.
class Tracer {
 public:
  Tracer(RecordReader& reader, const TakeLine<TraceLine>& take) : reader_(reader), take_(take) {}

  // Passes each batch to `add_lines`, in order.
  template <typename AddLines>
  void Read(AddLines add_lines) {
    std::vector<TracedBatch> batches;
    reader_.Read(kReadBoth | kReadBatch | kReadRecipe | kReadOperator | kReadIngredient | kReadPen |
                     kReadWeights | kReadDate,
                 [&](const Record& record) {
                   batches.resize(reader_.Batches().size());
                   batches[record.batch].Add(record);
                 });
    for (const std::uint32_t index : reader_.BatchesInOrder()) {
      if (index < batches.size()) {
        add_lines(reader_.Batches()[index], batches[index]);
      }
    }
  }

  void TakeDelivery(const Batch& batch, const TracedDelivery& delivery) {
    take_(LineOf(batch, delivery));
  }

  // What a delivery had of an ingredient.
  void TakePart(const Batch& batch, const TracedDelivery& delivery, const TracedBatch& traced,
                NameId ingredient, const Exact& weight) {
    TraceLine line = LineOf(batch, delivery);
    SetIngredient(line, ingredient, weight, traced, delivery.actual);
    take_(std::move(line));
  }

  void TakeStayed(const Batch& batch, const TracedBatch& traced, NameId ingredient,
                  const Exact& weight) {
    TraceLine line = LineOf(batch, batch.operator_id, batch.day);
    line.stayed = true;
    SetIngredient(line, ingredient, weight, traced, traced.loaded - traced.fed);
    take_(std::move(line));
  }

 private:
  [[nodiscard]] TraceLine LineOf(const Batch& batch, NameId operator_id, DayNumber day) const {
    return {.transaction = batch.Number(),
            .date = ToDate(day),
            .recipe = reader_.NamesOf(NameKind::kRecipe).Name(batch.recipe),
            .operator_id = reader_.NamesOf(NameKind::kOperator).Name(operator_id)};
  }

  [[nodiscard]] TraceLine LineOf(const Batch& batch, const TracedDelivery& delivery) const {
    TraceLine line = LineOf(batch, delivery.operator_id, delivery.day);
    line.pen = reader_.NamesOf(NameKind::kPen).Name(delivery.pen);
    return line;
  }

  void SetIngredient(TraceLine& line, NameId ingredient, const Exact& weight,
                     const TracedBatch& batch, const Exact& amount) const {
    line.ingredient = reader_.NamesOf(NameKind::kIngredient).Name(ingredient);
    if (batch.loaded.Sign() > 0) {
      line.weight = Quotient(weight * amount, batch.loaded);
      line.share = Percent(weight, batch.loaded);
    }
  }

  RecordReader& reader_;
  const TakeLine<TraceLine>& take_;
};

void TraceForward(RecordReader& reader, const Question& question, const TakeLine<TraceLine>& take) {
  Tracer tracer(reader, take);
  const NameId ingredient = reader.IdOf(question.ingredient, NameKind::kIngredient);
  const NameId pen = reader.IdOf(question.pen, NameKind::kPen);
  tracer.Read([&](const Batch& batch, TracedBatch& traced) {
    const Exact weight = traced.WeightOf(ingredient);
    for (const TracedDelivery& delivery : traced.deliveries) {
      if (pen == kNoName || delivery.pen == pen) {
        tracer.TakePart(batch, delivery, traced, ingredient, weight);
      }
    }
    tracer.TakeStayed(batch, traced, ingredient, weight);
  });
}

void TraceBackward(RecordReader& reader, const Question& question,
                   const TakeLine<TraceLine>& take) {
  Tracer tracer(reader, take);
  const NameId pen = reader.IdOf(question.pen, NameKind::kPen);
  const NameId ingredient = reader.IdOf(question.ingredient, NameKind::kIngredient);
  tracer.Read([&](const Batch& batch, TracedBatch& traced) {
    const Names& names = reader.NamesOf(NameKind::kIngredient);
    std::sort(traced.ingredients.begin(), traced.ingredients.end(),
              [&](const auto& left, const auto& right) {
                return names.Text(left.first) < names.Text(right.first);
              });
    for (const TracedDelivery& delivery : traced.deliveries) {
      if (delivery.pen != pen) {
        continue;
      }
      if (traced.ingredients.empty()) {
        tracer.TakeDelivery(batch, delivery);
      }
      for (const auto& [loaded, weight] : traced.ingredients) {
        if (ingredient == kNoName || loaded == ingredient) {
          tracer.TakePart(batch, delivery, traced, loaded, weight);
        }
      }
    }
  });
}

}  // namespace

InsightNotes StreamTraceOfIngredient(SQLite::Database& database, const Question& question,
                                     const TakeLine<TraceLine>& take,
                                     const InsightProgress& progress) {
  if (!question.ingredient) {
    throw QuestionError("a trace forward is of an ingredient");
  }
  return BatchParts(database, question, progress).Read([&](RecordReader& reader) {
    TraceForward(reader, question, take);
  });
}

Trace TraceIngredient(SQLite::Database& database, const Question& question,
                      const InsightProgress& progress) {
  Trace trace;
  trace.notes = StreamTraceOfIngredient(
      database, question, [&](TraceLine&& line) { trace.lines.push_back(std::move(line)); },
      progress);
  return trace;
}

InsightNotes StreamTraceOfPen(SQLite::Database& database, const Question& question,
                              const TakeLine<TraceLine>& take, const InsightProgress& progress) {
  if (!question.pen) {
    throw QuestionError("a trace backward is of a pen");
  }
  return BatchParts(database, question, progress).Read([&](RecordReader& reader) {
    TraceBackward(reader, question, take);
  });
}

Trace TracePen(SQLite::Database& database, const Question& question,
               const InsightProgress& progress) {
  Trace trace;
  trace.notes = StreamTraceOfPen(
      database, question, [&](TraceLine&& line) { trace.lines.push_back(std::move(line)); },
      progress);
  return trace;
}

}  // namespace vrx
