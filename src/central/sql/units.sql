-- Weights and the rows that count.

-- The number that the shortest decimal text of a weight shows; NULL counts 0.
CREATE OR REPLACE FUNCTION vrx.exact(weight float8) RETURNS numeric
LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN coalesce(weight::text::numeric, 0);

-- An exact weight in another unit: 1 lb = 0.45359237 kg. Quotients have 30 decimals.
CREATE OR REPLACE FUNCTION vrx.in_unit(weight numeric, unit text, other text) RETURNS numeric
LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE WHEN unit = other THEN weight
            WHEN other = 'KG' THEN weight * 0.45359237
            ELSE round(weight, 30) / 0.45359237 END;

-- The double that a row counts with: the stored one, or the nearest one after the conversion of a
-- row whose import was in the other unit than its source.
CREATE OR REPLACE FUNCTION vrx.counted(weight float8, unit text, converts boolean) RETURNS float8
LANGUAGE sql IMMUTABLE PARALLEL SAFE
RETURN CASE WHEN converts THEN
  vrx.in_unit(vrx.exact(weight), CASE unit WHEN 'KG' THEN 'LB' ELSE 'KG' END, unit)::float8
  ELSE coalesce(weight, 0) END;

-- Imports whose unit is not their source's. `use` is keep, convert, or open: then their rows are out
-- of all figures until the yard settles it.
CREATE OR REPLACE VIEW vrx.import_in_other_unit WITH (security_invoker) AS
SELECT y.name AS yard, i.yard AS yard_id, i.source, i.import, i.file, i.units AS import_unit,
       s.unit AS source_unit, i.stored AS rows,
       CASE WHEN w.word IN ('keep', 'convert') THEN w.word ELSE 'open' END AS use
FROM vrx.import i
JOIN vrx.source s ON s.yard = i.yard AND s.source = i.source
JOIN vrx.yard y ON y.yard = i.yard
CROSS JOIN LATERAL (SELECT coalesce(
  (SELECT m.value FROM vrx.mark m WHERE m.yard = i.yard AND m.source = i.source
     AND m.import = i.import AND m.kind = 'settled' ORDER BY m.at DESC LIMIT 1),
  i.settled) AS word) w
WHERE i.units IN ('LB', 'KG') AND i.units <> s.unit;

-- Loads and deliveries that count, with their weights as doubles in the unit of their source.
-- Withdrawn rows are not among them. `operator` is NULL for the missing user that some databases
-- store as -1; an empty name is NULL.
CREATE OR REPLACE VIEW vrx.counted_row WITH (security_invoker) AS
SELECT t.yard AS yard_id, t.source, t.row, t.batch, t.number, t.import, t.type = 'BATCH' AS is_load,
       nullif(t.recipe, '') AS recipe, nullif(nullif(t.user_id, ''), '-1') AS operator,
       CASE WHEN t.type = 'BATCH' THEN nullif(t.ingredient, '') END AS ingredient,
       CASE WHEN t.type = 'FEED' THEN nullif(t.pen, '') END AS pen, t.day AS row_day,
       CASE WHEN t.time ~ '^([01][0-9]|2[0-3]):[0-5][0-9]:[0-5][0-9]$' THEN t.time::time END
         AS time, s.unit,
       vrx.counted(t.target, s.unit, coalesce(o.use = 'convert', false)) AS target,
       vrx.counted(CASE WHEN t.type = 'BATCH' THEN t.actual_batch ELSE t.actual_feed END, s.unit,
                   coalesce(o.use = 'convert', false)) AS actual
FROM vrx.transaction t
JOIN vrx.source s ON s.yard = t.yard AND s.source = t.source
LEFT JOIN (SELECT i.yard_id, i.source, i.import, i.use FROM vrx.import_in_other_unit i
           WHERE i.use <> 'keep') o
  ON o.yard_id = t.yard AND o.source = t.source AND o.import = t.import
LEFT JOIN vrx.withdrawal w ON w.yard = t.yard AND w.source = t.source
  AND (w.first_row IS NULL OR t.row BETWEEN w.first_row AND w.last_row)
WHERE t.type IN ('BATCH', 'FEED') AND o.use IS DISTINCT FROM 'open' AND w.yard IS NULL;

-- The batches with their days. A batch that goes on in a copied file has a line for each source; they
-- have the same home.
CREATE OR REPLACE VIEW vrx.batch WITH (security_invoker) AS
SELECT d.yard AS yard_id, d.source, d.batch, d.day, d.of_load AS has_load, d.home
FROM vrx.batch_day d
LEFT JOIN vrx.batch_day l ON NOT d.of_load AND l.yard = d.yard AND l.source = d.source
  AND l.batch = d.batch AND l.of_load
WHERE l.yard IS NULL;

-- The sources that a copied file has its first rows from, the nearest one first, and up to which row.
CREATE OR REPLACE FUNCTION vrx.ancestors(yard_id uuid, source_id uuid)
RETURNS TABLE (source uuid, last_row bigint, steps integer)
LANGUAGE sql STABLE SET search_path = pg_catalog, pg_temp AS $$
  WITH RECURSIVE ancestor AS (
    SELECT s.parent AS source, s.parent_last_row AS last_row, 1 AS steps
      FROM vrx.source s
      WHERE s.yard = yard_id AND s.source = source_id AND s.parent IS NOT NULL
    UNION ALL
    SELECT s.parent, least(a.last_row, s.parent_last_row), a.steps + 1
      FROM ancestor a JOIN vrx.source s ON s.yard = yard_id AND s.source = a.source
      WHERE s.parent IS NOT NULL AND a.steps < 1000)
  SELECT a.source, a.last_row, a.steps FROM ancestor a
$$;

-- Where a batch of a copied file began: the nearest ancestor that has rows of it from before the
-- copy. Nothing for a batch of the source's own.
CREATE OR REPLACE FUNCTION vrx.home_of_batch(yard_id uuid, source_id uuid, batch_id bigint)
RETURNS TABLE (home uuid, day date, has_load boolean)
LANGUAGE sql STABLE STRICT SET search_path = pg_catalog, pg_temp AS $$
  SELECT b.home, b.day, b.has_load
    FROM vrx.ancestors(home_of_batch.yard_id, source_id) a
    JOIN vrx.batch b ON b.yard_id = home_of_batch.yard_id AND b.source = a.source
      AND b.batch = batch_id
    WHERE EXISTS (SELECT FROM vrx.transaction t WHERE t.yard = home_of_batch.yard_id
      AND t.source = a.source AND t.batch = batch_id AND t.row <= a.last_row)
    ORDER BY a.steps LIMIT 1
$$;

GRANT EXECUTE ON FUNCTION vrx.exact(float8), vrx.in_unit(numeric, text, text),
  vrx.counted(float8, text, boolean), vrx.ancestors(uuid, uuid),
  vrx.home_of_batch(uuid, uuid, bigint)
  TO vrx_yard, vrx_office, vrx_administrator;
GRANT SELECT ON vrx.import_in_other_unit, vrx.counted_row, vrx.batch
  TO vrx_yard, vrx_office, vrx_administrator;
