-- Count, exact sums and digest of the rows in a range of a source. The digest is SHA-256 over the
-- digests of the rows in their order, joined: those that are stored, or, with `anew`, those computed
-- from the rows as they are now. Weights with up to six decimals below a billion are summed as whole
-- millionths, which is fast. Without statistics, only the settings keep the planner from sorting.
CREATE OR REPLACE FUNCTION vrx.row_proof(yard_id uuid, source_id uuid, from_row bigint,
                                         to_row bigint, anew boolean)
RETURNS TABLE (rows bigint, target numeric, actual_batch numeric, actual_feed numeric, digest bytea)
LANGUAGE sql STABLE SET search_path = pg_catalog, pg_temp
SET client_encoding = 'UTF8' SET extra_float_digits = 1
SET enable_seqscan = off SET enable_bitmapscan = off AS $$
  SELECT count(*),
         trim_scale(coalesce(sum((c.target * 1e6)::bigint) FILTER (WHERE c.small_target), 0)
           * 0.000001
           + coalesce(sum(c.target::text::numeric) FILTER (WHERE NOT c.small_target), 0)),
         trim_scale(coalesce(sum((c.actual_batch * 1e6)::bigint) FILTER (WHERE c.small_batch), 0)
           * 0.000001
           + coalesce(sum(c.actual_batch::text::numeric) FILTER (WHERE NOT c.small_batch), 0)),
         trim_scale(coalesce(sum((c.actual_feed * 1e6)::bigint) FILTER (WHERE c.small_feed), 0)
           * 0.000001
           + coalesce(sum(c.actual_feed::text::numeric) FILTER (WHERE NOT c.small_feed), 0)),
         sha256(coalesce(string_agg(c.digest, ''::bytea), ''::bytea))
    FROM (SELECT t.target, t.actual_batch, t.actual_feed,
                 CASE WHEN abs(t.target) < 1e9
                   THEN (t.target * 1e6)::bigint / 1e6::float8 = t.target ELSE false END
                   AS small_target,
                 CASE WHEN abs(t.actual_batch) < 1e9
                   THEN (t.actual_batch * 1e6)::bigint / 1e6::float8 = t.actual_batch ELSE false END
                   AS small_batch,
                 CASE WHEN abs(t.actual_feed) < 1e9
                   THEN (t.actual_feed * 1e6)::bigint / 1e6::float8 = t.actual_feed ELSE false END
                   AS small_feed,
                 CASE WHEN anew THEN
                   sha256(record_send(ROW(t.row, t.number, t.recipe, t.type, t.user_id,
                     t.ingredient, t.pen, t.target, t.actual_batch, t.time, t.date, t.actual_feed,
                     t.ing_percent, t.weights)))
                 ELSE t.digest END AS digest
            FROM vrx.transaction t
            WHERE t.yard = yard_id AND t.source = source_id AND t.row BETWEEN from_row AND to_row
            ORDER BY t.row) c
$$;

-- The proof of a push: the server's own count, sums and digests of the rows that it has. The client
-- compares them with those of its file before it commits. Runs with the rights of the yard.
CREATE OR REPLACE FUNCTION vrx.prove_push() RETURNS trigger
LANGUAGE plpgsql SET search_path = pg_catalog, pg_temp AS $$
DECLARE
  before record;
BEGIN
  SELECT p.last_row, p.chain INTO before FROM vrx.push p
    WHERE p.yard = NEW.yard AND p.source = NEW.source ORDER BY p.first_row DESC LIMIT 1;
  IF before.last_row >= NEW.first_row THEN
    RAISE EXCEPTION 'rows up to % of this source are in a push already', before.last_row
      USING ERRCODE = 'unique_violation', TABLE = 'push';
  END IF;
  SELECT p.rows, p.target, p.actual_batch, p.actual_feed, p.digest
    INTO NEW.rows, NEW.target, NEW.actual_batch, NEW.actual_feed, NEW.digest
    FROM vrx.row_proof(NEW.yard, NEW.source, NEW.first_row, NEW.last_row, false) p;
  NEW.chain := sha256(coalesce(before.chain, decode(repeat('00', 32), 'hex')) || NEW.digest);
  NEW.at := clock_timestamp();
  NEW.login := session_user;
  RETURN NEW;
END
$$;

CREATE OR REPLACE TRIGGER prove BEFORE INSERT ON vrx.push
  FOR EACH ROW EXECUTE FUNCTION vrx.prove_push();

-- Adds the days of the batches that have rows in a range. Rows of an import whose unit is open and
-- withdrawn rows do not count. What is known is read beforehand: without statistics, the planner
-- would join by loops over what the statement itself adds.
CREATE OR REPLACE FUNCTION vrx.add_batch_days(yard_id uuid, source_id uuid, from_row bigint,
                                              to_row bigint) RETURNS void
LANGUAGE plpgsql SET search_path = pg_catalog, pg_temp AS $$
DECLARE
  low bigint;
  high bigint;
  with_load bigint[];
  without_load bigint[];
  open_imports bigint[];
  last_of_ancestors bigint;  -- batch that may have begun before the file was copied
  any_withdrawn boolean := EXISTS (SELECT FROM vrx.withdrawal w
    WHERE w.yard = yard_id AND w.source = source_id);
BEGIN
  SELECT min(r.batch), max(r.batch) INTO low, high
    FROM (SELECT t.batch FROM vrx.transaction t WHERE t.yard = yard_id AND t.source = source_id
            AND t.row BETWEEN from_row AND to_row OFFSET 0) r;
  SELECT coalesce(array_agg(d.batch) FILTER (WHERE d.of_load), '{}'),
         coalesce(array_agg(d.batch) FILTER (WHERE NOT d.of_load), '{}')
    INTO with_load, without_load FROM vrx.batch_day d
    WHERE d.yard = yard_id AND d.source = source_id AND d.batch BETWEEN low AND high;
  SELECT coalesce(array_agg(o.import), '{}') INTO open_imports FROM vrx.import_in_other_unit o
    WHERE o.yard_id = add_batch_days.yard_id AND o.source = source_id AND o.use = 'open';
  SELECT max(m.batch) INTO last_of_ancestors FROM vrx.ancestors(yard_id, source_id) a
    CROSS JOIN LATERAL (SELECT t.batch FROM vrx.transaction t
      WHERE t.yard = add_batch_days.yard_id AND t.source = a.source AND t.row <= a.last_row
      ORDER BY t.batch DESC LIMIT 1) m;
  INSERT INTO vrx.batch_day (yard, source, batch, of_load, day, home)
    SELECT yard_id, source_id, f.batch, f.of_load,
           CASE WHEN h.has_load OR NOT f.of_load THEN coalesce(h.day, f.day) ELSE f.day END,
           coalesce(h.home, source_id)
    FROM (SELECT DISTINCT ON (r.batch) r.batch, r.type = 'BATCH' AS of_load, r.day
            FROM (SELECT t.batch, t.type, t.row, t.day, t.import FROM vrx.transaction t
                    WHERE t.yard = yard_id AND t.source = source_id
                      AND t.row BETWEEN from_row AND to_row OFFSET 0) r
            WHERE r.type IN ('BATCH', 'FEED')
              AND (r.import IS NULL OR r.import <> ALL (open_imports))
              AND NOT (any_withdrawn AND EXISTS (SELECT FROM vrx.withdrawal w
                WHERE w.yard = yard_id AND w.source = source_id
                  AND (w.first_row IS NULL OR r.row BETWEEN w.first_row AND w.last_row)))
            ORDER BY r.batch, r.type, r.row) f
    LEFT JOIN LATERAL vrx.home_of_batch(yard_id, source_id, CASE
      WHEN f.batch <= last_of_ancestors THEN f.batch END) h ON true  -- NULL is not looked up
    WHERE f.batch <> ALL (with_load) AND (f.of_load OR f.batch <> ALL (without_load));
END
$$;

-- A push has rows of new batches; a settled import has rows that count from now on.
CREATE OR REPLACE FUNCTION vrx.note_batch_days() RETURNS trigger
LANGUAGE plpgsql SET search_path = pg_catalog, pg_temp AS $$
BEGIN
  IF TG_TABLE_NAME = 'push' THEN
    PERFORM vrx.add_batch_days(NEW.yard, NEW.source, NEW.first_row, NEW.last_row);
  ELSIF NEW.kind = 'settled' THEN
    PERFORM vrx.add_batch_days(NEW.yard, NEW.source, min(t.row), max(t.row))
      FROM vrx.transaction t
      WHERE t.yard = NEW.yard AND t.source = NEW.source AND t.import = NEW.import;
  END IF;
  RETURN NULL;
END
$$;

CREATE OR REPLACE TRIGGER note_batch_days AFTER INSERT ON vrx.push
  FOR EACH ROW EXECUTE FUNCTION vrx.note_batch_days();
CREATE OR REPLACE TRIGGER note_batch_days AFTER INSERT ON vrx.mark
  FOR EACH ROW EXECUTE FUNCTION vrx.note_batch_days();

REVOKE ALL ON FUNCTION vrx.prove_push(), vrx.note_batch_days(),
  vrx.add_batch_days(uuid, uuid, bigint, bigint),
  vrx.row_proof(uuid, uuid, bigint, bigint, boolean) FROM PUBLIC;
GRANT EXECUTE ON FUNCTION vrx.add_batch_days(uuid, uuid, bigint, bigint) TO vrx_yard;
GRANT EXECUTE ON FUNCTION vrx.row_proof(uuid, uuid, bigint, bigint, boolean)
  TO vrx_yard, vrx_office, vrx_administrator;
