-- Schema version 1. Runs as vrx_owner. Texts are UTF-8, as is the database.

CREATE TABLE vrx.version (
  version integer PRIMARY KEY,
  minimum_client integer NOT NULL,  -- an older client is refused
  at timestamptz NOT NULL DEFAULT clock_timestamp(),
  login text NOT NULL DEFAULT session_user
);

CREATE TABLE vrx.yard (
  yard uuid PRIMARY KEY DEFAULT gen_random_uuid(),
  name text NOT NULL UNIQUE CHECK (name <> ''),
  zone text NOT NULL,  -- IANA name; the days of its records are local days
  added timestamptz NOT NULL DEFAULT clock_timestamp()
);

-- The yard of each login. No yard can write it.
CREATE TABLE vrx.login (
  login text PRIMARY KEY,
  yard uuid NOT NULL REFERENCES vrx.yard
);

-- One transaction database. `parent` is the source that its file was a copy of: the rows up to
-- `parent_last_row` stand there, those above it here.
CREATE TABLE vrx.source (
  yard uuid NOT NULL REFERENCES vrx.yard,
  source uuid NOT NULL,
  generation uuid NOT NULL,
  parent uuid,
  parent_generation uuid,
  parent_last_row bigint,
  unit text NOT NULL CHECK (unit IN ('LB', 'KG')),  -- of its weights
  file text NOT NULL,  -- name without folder
  at timestamptz NOT NULL DEFAULT clock_timestamp(),
  login text NOT NULL DEFAULT session_user,
  PRIMARY KEY (yard, source),
  CHECK ((parent IS NULL) = (parent_last_row IS NULL))
);

-- What became known of a source after its first push:
--   label    the unit label changed; `value` is the new one
--   settled  the weights of `import` are kept or converted; `value` is keep or convert
CREATE TABLE vrx.mark (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  at timestamptz NOT NULL DEFAULT clock_timestamp(),
  kind text NOT NULL CHECK (kind IN ('label', 'settled')),
  import bigint,
  value text NOT NULL,
  login text NOT NULL DEFAULT session_user,
  PRIMARY KEY (yard, source, at, kind),
  FOREIGN KEY (yard, source) REFERENCES vrx.source
);

-- A row of `Imports`. Dates are texts as stored.
CREATE TABLE vrx.import (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  import bigint NOT NULL,  -- `Number`
  at text,
  file text,
  sha256 text,
  units text,
  rows_read bigint,
  stored bigint,
  left_out bigint,
  not_read bigint,
  repeated bigint,
  batches bigint,
  file_low bigint,
  file_high bigint,
  missing text,
  stored_low bigint,
  stored_high bigint,
  first_date text,
  last_date text,
  settled text,
  PRIMARY KEY (yard, source, import),
  FOREIGN KEY (yard, source) REFERENCES vrx.source
);

-- A row of `ImportedBatches`.
CREATE TABLE vrx.imported_batch (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  import bigint NOT NULL,
  position bigint NOT NULL,  -- within its import, from 1
  file_number bigint,
  number bigint,  -- `Transaction`
  state text,
  loads text,
  feeds text,
  rows bigint,
  PRIMARY KEY (yard, source, import, position),
  FOREIGN KEY (yard, source) REFERENCES vrx.source
);

-- The date that a stored text shows; nothing for another text or a day that does not exist.
CREATE FUNCTION vrx.stored_day(stored text) RETURNS date
LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE
  WHEN stored !~ '^[0-9]{4}-(0[1-9]|1[0-2])-(0[1-9]|[12][0-9]|3[01])$' OR left(stored, 4) = '0000'
    THEN NULL
  WHEN right(stored, 2) <= '28' OR right(stored, 2)::integer <= date_part('day',
       make_date(left(stored, 4)::integer, substr(stored, 6, 2)::integer, 1) + interval '1 month'
       - interval '1 day')
    THEN make_date(left(stored, 4)::integer, substr(stored, 6, 2)::integer,
                   right(stored, 2)::integer)
END;

-- A row of `Transactions`, as stored there.
--
-- The digest is SHA-256 over the canonical row, which is what PostgreSQL sends for a record in
-- binary form with client encoding UTF8. All numbers are big-endian:
--   int32 14, the number of fields
--   for each field: int32 type (20 bigint, 25 text, 701 float8, 1022 float8[]), int32 length in
--   bytes, the bytes; NULL has the length -1 and no bytes
-- The fields are row, number (int64), recipe, type, user_id, ingredient, pen (UTF-8), target,
-- actual_batch (IEEE 754 double), time, date (UTF-8), actual_feed, ing_percent (double), weights.
-- The bytes of weights: int32 1 (dimensions), int32 1 if any element is NULL else 0, int32 701,
-- int32 number of elements, int32 1 (first index), then for each element int32 8 and a double, or
-- int32 -1. Weights end with the last one that is not NULL; without one the field is NULL.
--
-- No foreign key to `source`: it would cost more than the rest of a push. Views join `source`.
CREATE TABLE vrx.transaction (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  row bigint NOT NULL,
  number bigint,  -- `Transaction`
  recipe text,
  type text,
  user_id text,
  ingredient text,
  pen text,
  target float8,
  actual_batch float8,
  time text,
  date text,
  actual_feed float8,
  ing_percent float8,
  weights float8[],  -- Ing01Wt and so on, for a restore only
  import bigint,  -- that stored it; not in the digest
  digest bytea NOT NULL,
  -- The batch; a row without a number is a batch of its own.
  batch bigint NOT NULL
    GENERATED ALWAYS AS (coalesce(number, '-9223372036854775808'::bigint + row)) STORED,
  day date GENERATED ALWAYS AS (vrx.stored_day(date)) STORED,
  PRIMARY KEY (yard, source, row),
  CONSTRAINT row_equals_its_digest CHECK (digest = sha256(record_send(ROW(
    row, number, recipe, type, user_id, ingredient, pen, target, actual_batch, time, date,
    actual_feed, ing_percent, weights)))),
  CONSTRAINT weights_end_with_a_value CHECK (weights IS NULL OR cardinality(weights) <= 100
    AND weights[cardinality(weights)] IS NOT NULL),
  CONSTRAINT weights_are_finite CHECK (greatest(abs(target), abs(actual_batch), abs(actual_feed))
    < 'Infinity')
);
-- Without the row: with it, the planner would search this index for a range of rows.
CREATE INDEX transaction_by_batch ON vrx.transaction (yard, source, batch);
CREATE INDEX transaction_by_day ON vrx.transaction (yard, day);
-- All that the accuracy of loads needs, so that it reads no other page of the table.
CREATE INDEX transaction_loads ON vrx.transaction (yard, source, batch)
  INCLUDE (ingredient, recipe, user_id, target, actual_batch, row, import) WHERE type = 'BATCH';

-- The day of each batch: of its first load, and as long as it has none, of its first delivery. A
-- push adds them; if loads come after deliveries, the batch has both and the first counts no more.
-- A batch that began before its file was copied, and that the copy goes on with, is one batch: `home`
-- is the source of its first rows, and its day is that of these rows.
CREATE TABLE vrx.batch_day (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  batch bigint NOT NULL,
  of_load boolean NOT NULL,
  day date,
  home uuid NOT NULL,
  PRIMARY KEY (yard, source, batch, of_load),
  FOREIGN KEY (yard, source) REFERENCES vrx.source
);
CREATE INDEX batch_day_by_day ON vrx.batch_day (yard, day) INCLUDE (source, batch, of_load);

-- Journal of the pushes; each covers the rows of its source from first_row to last_row. The server
-- computes what follows `client` from the rows that it has.
-- digest = SHA-256 over the digests of its rows in order, joined;
-- chain = SHA-256 over the chain of the push before (32 zero bytes before the first) and digest.
-- The sums are exact: of the shortest decimal text of each weight.
CREATE TABLE vrx.push (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  first_row bigint NOT NULL,
  last_row bigint NOT NULL,
  generation uuid NOT NULL,  -- of the file
  unit text NOT NULL CHECK (unit IN ('LB', 'KG')),
  client integer NOT NULL,
  rows bigint NOT NULL,
  target numeric NOT NULL,
  actual_batch numeric NOT NULL,
  actual_feed numeric NOT NULL,
  digest bytea NOT NULL,
  chain bytea NOT NULL,
  at timestamptz NOT NULL,
  login text NOT NULL,
  PRIMARY KEY (yard, source, first_row),
  CHECK (first_row <= last_row),
  FOREIGN KEY (yard, source) REFERENCES vrx.source
);

-- Rows that are out of all figures. Without rows it is the whole source, also what comes later.
-- Erased rows are gone from the other tables.
CREATE TABLE vrx.withdrawal (
  yard uuid NOT NULL,
  source uuid NOT NULL,
  at timestamptz NOT NULL DEFAULT clock_timestamp(),
  first_row bigint,
  last_row bigint,
  erased boolean NOT NULL,
  rows bigint NOT NULL,  -- that there were
  why text NOT NULL CHECK (why <> ''),
  login text NOT NULL DEFAULT session_user,
  PRIMARY KEY (yard, source, at),
  FOREIGN KEY (yard, source) REFERENCES vrx.source,
  CHECK ((first_row IS NULL) = (last_row IS NULL)),
  CHECK (first_row <= last_row)
);

-- What the company calls an ingredient of a yard.
CREATE TABLE vrx.ingredient_alias (
  yard uuid NOT NULL REFERENCES vrx.yard,
  name text NOT NULL,
  company_name text NOT NULL CHECK (company_name <> ''),
  PRIMARY KEY (yard, name)
);

-- A recipe database that was published. Its tables hold the columns of the file as stored.
CREATE TABLE vrx.release (
  release integer PRIMARY KEY,
  unit text NOT NULL CHECK (unit IN ('LB', 'KG')),
  file text NOT NULL,
  note text,
  for_all boolean NOT NULL,  -- else for the yards in release_yard
  at timestamptz NOT NULL DEFAULT clock_timestamp(),
  login text NOT NULL DEFAULT session_user
);

CREATE TABLE vrx.release_yard (
  release integer REFERENCES vrx.release,
  yard uuid REFERENCES vrx.yard,
  PRIMARY KEY (yard, release)
);

CREATE TABLE vrx.ingredient (
  release integer REFERENCES vrx.release,
  id bigint,
  name text,
  description text,
  dry_matter bigint,
  hand_add bigint,
  PRIMARY KEY (release, id)
);

CREATE TABLE vrx.recipe (
  release integer REFERENCES vrx.release,
  id bigint,
  name text,
  description text,
  batch_type text,
  head_count bigint,
  ration_target text,
  adj_bat_tot_index text,
  PRIMARY KEY (release, id)
);

CREATE TABLE vrx.recipe_line (
  release integer REFERENCES vrx.release,
  position bigint,  -- its rowid in the file
  recipe_id text,
  ingredient text,
  target text,
  ration_percent text,
  dry_matter_percent text,
  dry_matter text,
  batch_target text,
  sequence bigint,
  hand_add bigint,
  ingredient_percent text,
  PRIMARY KEY (release, position)
);

CREATE TABLE vrx.pen (
  release integer REFERENCES vrx.release,
  id bigint,
  name text,
  description text,
  feed_amount text,
  PRIMARY KEY (release, id)
);

CREATE TABLE vrx.fetch (
  yard uuid NOT NULL REFERENCES vrx.yard,
  release integer NOT NULL REFERENCES vrx.release,
  at timestamptz NOT NULL DEFAULT clock_timestamp(),
  login text NOT NULL DEFAULT session_user,
  PRIMARY KEY (yard, release, at)
);
