-- The views that reporting tools read. `day` of a load or delivery is the day of its batch, in the
-- yard's local time; `date` is its own. Weights are in `unit`, which is that of the source: sums over
-- yards are made per unit and then converted. Views by day hold counts and sums only, because shares
-- and quantiles of days cannot be averaged; vrx.accuracy makes those.

CREATE OR REPLACE VIEW vrx.load WITH (security_invoker) AS
SELECT y.name AS yard, b.day, r.row_day AS date, r.time, r.number, r.recipe, r.operator,
       r.ingredient, coalesce(a.company_name, r.ingredient) AS company_ingredient, r.target,
       r.actual, r.unit, r.source, r.batch, r.row, r.import, b.home
FROM vrx.batch b
JOIN vrx.yard y ON y.yard = b.yard_id
JOIN vrx.counted_row r ON r.yard_id = b.yard_id AND r.source = b.source AND r.batch = b.batch
LEFT JOIN vrx.ingredient_alias a ON a.yard = r.yard_id AND a.name = r.ingredient
WHERE r.is_load;

CREATE OR REPLACE VIEW vrx.delivery WITH (security_invoker) AS
SELECT y.name AS yard, b.day, r.row_day AS date, r.time, r.number, r.recipe, r.operator, r.pen,
       r.target, r.actual, r.unit, r.source, r.batch, r.row, r.import, b.home
FROM vrx.batch b
JOIN vrx.yard y ON y.yard = b.yard_id
JOIN vrx.counted_row r ON r.yard_id = b.yard_id AND r.source = b.source AND r.batch = b.batch
WHERE NOT r.is_load;

-- Recipe and operator are those of the first row. A batch is out of balance when more than 2 % of
-- what was loaded and more than 50 kg are left or lacking. A batch that goes on in a copied file is
-- one batch, of the source and in the unit of its first rows.
CREATE OR REPLACE VIEW vrx.batch_balance WITH (security_invoker) AS
SELECT s.yard, s.day, s.number, s.recipe, s.operator,
       CASE WHEN s.loads > 0 THEN w.loaded::float8 END AS loaded,
       CASE WHEN s.deliveries > 0 THEN w.fed::float8 END AS fed,
       (w.loaded - w.fed)::float8 AS "left",
       CASE WHEN w.loaded > 0 THEN (round(100 * (w.loaded - w.fed), 30) / w.loaded)::float8 END
         AS left_percent,
       CASE WHEN s.deliveries = 0 THEN 'never fed'
            WHEN s.loads = 0 THEN 'never loaded'
            WHEN abs(w.loaded - w.fed) * 100 > w.loaded * 2
             AND vrx.in_unit(abs(w.loaded - w.fed), s.unit, 'KG') > 50 THEN 'out'
            ELSE 'balanced' END AS state,
       s.loads, s.deliveries, s.unit, s.source, s.batch
FROM (
  SELECT y.name AS yard, b.day, min(r.number) AS number, b.home AS source, b.batch,
         -- A join here would make the planner take the rows for few.
         CASE WHEN min(r.unit) = max(r.unit) THEN min(r.unit)
              ELSE (SELECT h.unit FROM vrx.source h WHERE h.yard = b.yard_id AND h.source = b.home)
              END AS unit,
         (array_agg(r.recipe ORDER BY r.row))[1] AS recipe,
         (array_agg(r.operator ORDER BY r.row))[1] AS operator,
         count(*) FILTER (WHERE r.is_load) AS loads,
         count(*) FILTER (WHERE NOT r.is_load) AS deliveries,
         sum(vrx.exact(r.actual)) FILTER (WHERE r.is_load AND r.unit = 'LB') AS loaded_lb,
         sum(vrx.exact(r.actual)) FILTER (WHERE r.is_load AND r.unit = 'KG') AS loaded_kg,
         sum(vrx.exact(r.actual)) FILTER (WHERE NOT r.is_load AND r.unit = 'LB') AS fed_lb,
         sum(vrx.exact(r.actual)) FILTER (WHERE NOT r.is_load AND r.unit = 'KG') AS fed_kg
  FROM vrx.batch b
  JOIN vrx.yard y ON y.yard = b.yard_id
  JOIN vrx.counted_row r ON r.yard_id = b.yard_id AND r.source = b.source AND r.batch = b.batch
  GROUP BY y.name, b.day, b.yard_id, b.home, b.batch) s
CROSS JOIN LATERAL (
  SELECT coalesce(vrx.in_unit(s.loaded_lb, 'LB', s.unit), 0)
         + coalesce(vrx.in_unit(s.loaded_kg, 'KG', s.unit), 0) AS loaded,
         coalesce(vrx.in_unit(s.fed_lb, 'LB', s.unit), 0)
         + coalesce(vrx.in_unit(s.fed_kg, 'KG', s.unit), 0) AS fed OFFSET 0) w;

-- Counts and sums of accuracy, with the limits 2 %, 5 kg and 62.5 kg.
CREATE OR REPLACE VIEW vrx.judged_load WITH (security_invoker) AS
SELECT l.yard, l.day, l.ingredient, l.company_ingredient, l.recipe, l.operator, l.unit, e.t, e.a,
       e.t > 0 AND e.a > 0 AS counts, abs(e.a - e.t) AS amount,
       vrx.in_unit(abs(e.a - e.t), l.unit, 'KG') AS kg
FROM vrx.load l
CROSS JOIN LATERAL (SELECT vrx.exact(l.target) AS t, vrx.exact(l.actual) AS a OFFSET 0) e;

CREATE OR REPLACE VIEW vrx.loads_by_ingredient_day WITH (security_invoker) AS
SELECT yard, day, ingredient, company_ingredient, unit,
       count(*) FILTER (WHERE counts) AS n, sum(t) FILTER (WHERE counts) AS target,
       sum(a) FILTER (WHERE counts) AS actual, sum(a - t) FILTER (WHERE counts) AS net,
       sum(amount) FILTER (WHERE counts) AS gross,
       count(*) FILTER (WHERE counts AND amount * 100 < t * 2) AS within_2_percent,
       sum(t) FILTER (WHERE counts AND amount * 100 < t * 2) AS target_within_2_percent,
       count(*) FILTER (WHERE counts AND kg < 5) AS within_5_kg,
       count(*) FILTER (WHERE counts AND kg > 62.5) AS beyond_62_5_kg,
       count(*) FILTER (WHERE counts AND a < t) AS below_target,
       count(*) FILTER (WHERE t > 0 AND a <= 0) AS not_loaded,
       sum(t) FILTER (WHERE t > 0 AND a <= 0) AS not_loaded_target,
       count(*) FILTER (WHERE t <= 0) AS without_target,
       sum(a) FILTER (WHERE t <= 0) AS without_target_actual
FROM vrx.judged_load
GROUP BY yard, day, ingredient, company_ingredient, unit;

CREATE OR REPLACE VIEW vrx.loads_by_operator_day WITH (security_invoker) AS
SELECT yard, day, operator, unit,
       count(*) FILTER (WHERE counts) AS n, sum(t) FILTER (WHERE counts) AS target,
       sum(a) FILTER (WHERE counts) AS actual, sum(a - t) FILTER (WHERE counts) AS net,
       sum(amount) FILTER (WHERE counts) AS gross,
       count(*) FILTER (WHERE counts AND amount * 100 < t * 2) AS within_2_percent,
       sum(t) FILTER (WHERE counts AND amount * 100 < t * 2) AS target_within_2_percent,
       count(*) FILTER (WHERE counts AND kg < 5) AS within_5_kg,
       count(*) FILTER (WHERE counts AND kg > 62.5) AS beyond_62_5_kg,
       count(*) FILTER (WHERE counts AND a < t) AS below_target,
       count(*) FILTER (WHERE t > 0 AND a <= 0) AS not_loaded,
       sum(t) FILTER (WHERE t > 0 AND a <= 0) AS not_loaded_target,
       count(*) FILTER (WHERE t <= 0) AS without_target,
       sum(a) FILTER (WHERE t <= 0) AS without_target_actual
FROM vrx.judged_load
GROUP BY yard, day, operator, unit;

-- By the delivery's own date. `first_time` is that of the day's first delivery, `recipe` that of
-- the last one by time.
CREATE OR REPLACE VIEW vrx.delivered_by_pen_day WITH (security_invoker) AS
SELECT yard, date AS day, pen, unit, count(*) AS deliveries, sum(vrx.exact(target)) AS target,
       sum(vrx.exact(actual)) AS actual, sum(vrx.exact(actual) - vrx.exact(target)) AS difference,
       min(time) AS first_time,
       (array_agg(recipe ORDER BY time DESC NULLS LAST, source DESC, row DESC))[1] AS recipe
FROM vrx.delivery
GROUP BY yard, date, pen, unit;

CREATE OR REPLACE VIEW vrx.used_by_ingredient_day WITH (security_invoker) AS
SELECT yard, day, ingredient, company_ingredient, unit, count(*) AS loads,
       sum(vrx.exact(actual)) AS used
FROM vrx.load
GROUP BY yard, day, ingredient, company_ingredient, unit;

-- Imports by the local day on which they were stored. An import of a copied file that its parent has
-- too is counted there.
CREATE OR REPLACE VIEW vrx.completeness_by_day WITH (security_invoker) AS
SELECT y.name AS yard, vrx.stored_day(left(i.at, 10)) AS day, count(*) AS imports,
       sum(i.batches) AS batches, sum(i.rows_read) AS rows_read, sum(i.stored) AS stored,
       sum(i.left_out) AS left_out, sum(i.not_read) AS not_read, sum(i.repeated) AS repeated,
       string_agg(nullif(i.missing, ''), ';' ORDER BY i.import) AS missing,
       sum(b.same) AS same, sum(b.continued) AS continued, sum(b.conflict) AS conflict,
       count(*) FILTER (WHERE o.use = 'open') AS unit_not_settled
FROM vrx.import i
JOIN vrx.yard y ON y.yard = i.yard
JOIN vrx.source s ON s.yard = i.yard AND s.source = i.source
LEFT JOIN vrx.import_in_other_unit o
  ON o.yard_id = i.yard AND o.source = i.source AND o.import = i.import
LEFT JOIN LATERAL (
  SELECT count(*) FILTER (WHERE m.state = 'same') AS same,
         count(*) FILTER (WHERE m.state = 'continued') AS continued,
         count(*) FILTER (WHERE m.state = 'conflict') AS conflict
  FROM vrx.imported_batch m
  WHERE m.yard = i.yard AND m.source = i.source AND m.import = i.import) b ON true
WHERE NOT EXISTS (SELECT FROM vrx.import p WHERE p.yard = i.yard AND p.source = s.parent
                  AND p.import = i.import AND p.at IS NOT DISTINCT FROM i.at)
  AND NOT EXISTS (SELECT FROM vrx.withdrawal w WHERE w.yard = i.yard AND w.source = i.source
                  AND w.first_row IS NULL)
GROUP BY y.name, vrx.stored_day(left(i.at, 10));

-- As of when each source is. `label_changed`: the unit label of the file was changed after a push.
CREATE OR REPLACE VIEW vrx.freshness WITH (security_invoker) AS
SELECT y.name AS yard, y.zone, s.source, s.file, s.unit, p.at AS last_push,
       clock_timestamp() - p.at AS age, p.last_row, r.rows,
       (SELECT max(t.day) FROM vrx.transaction t WHERE t.yard = y.yard AND t.source = s.source
          AND t.row > p.last_row - 1000) AS last_day,
       EXISTS (SELECT FROM vrx.mark m WHERE m.yard = s.yard AND m.source = s.source
               AND m.kind = 'label') AS label_changed,
       EXISTS (SELECT FROM vrx.withdrawal w WHERE w.yard = s.yard AND w.source = s.source
               AND w.first_row IS NULL) AS withdrawn
FROM vrx.yard y
LEFT JOIN vrx.source s ON s.yard = y.yard
LEFT JOIN LATERAL (SELECT q.at, q.last_row FROM vrx.push q WHERE q.yard = s.yard
                   AND q.source = s.source ORDER BY q.first_row DESC LIMIT 1) p ON true
LEFT JOIN LATERAL (SELECT sum(q.rows) AS rows FROM vrx.push q WHERE q.yard = s.yard
                   AND q.source = s.source) r ON true;

GRANT SELECT ON vrx.load, vrx.delivery, vrx.batch_balance, vrx.judged_load,
  vrx.loads_by_ingredient_day, vrx.loads_by_operator_day, vrx.delivered_by_pen_day,
  vrx.used_by_ingredient_day, vrx.completeness_by_day, vrx.freshness
  TO vrx_yard, vrx_office, vrx_administrator;
