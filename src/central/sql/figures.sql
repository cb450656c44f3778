-- Figures that cannot be added up from day to day.

-- The column of a key of vrx.accuracy, and its text.
CREATE OR REPLACE FUNCTION vrx.key_column(key text, deliveries boolean) RETURNS text
LANGUAGE plpgsql IMMUTABLE SET search_path = pg_catalog, pg_temp AS $$
BEGIN
  IF key = 'pen' AND NOT deliveries THEN
    RAISE EXCEPTION 'loads have no pen' USING ERRCODE = 'invalid_parameter_value';
  ELSIF key IN ('ingredient', 'own_ingredient') AND deliveries THEN
    RAISE EXCEPTION 'deliveries have no ingredient' USING ERRCODE = 'invalid_parameter_value';
  END IF;
  RETURN CASE key
    WHEN 'yard' THEN 'b.name'
    WHEN 'ingredient' THEN 'coalesce(a.company_name, r.ingredient)'
    WHEN 'own_ingredient' THEN 'r.ingredient'
    WHEN 'recipe' THEN 'r.recipe'
    WHEN 'operator' THEN 'r.operator'
    WHEN 'pen' THEN 'r.pen'
    WHEN 'day' THEN 'to_char(b.day, ''YYYY-MM-DD'')'
    WHEN 'week' THEN 'to_char(b.day, ''IYYY-"W"IW'')'
    WHEN 'month' THEN 'to_char(b.day, ''YYYY-MM'')' END;
END
$$;

CREATE OR REPLACE AGGREGATE vrx.joined(float8[]) (
  SFUNC = array_cat, STYPE = float8[], PARALLEL = SAFE);

-- Accuracy of the loads (or deliveries) of the batches from `from_day` to `to_day`; NULL is no
-- limit. `keys` are of yard, ingredient (the company's name), own_ingredient, recipe, operator, pen,
-- day, week and month; operators and pens go with their yard. Without a key it is the total. Weights
-- come in `unit`; shares and quartiles in percent; NULL where there is nothing. `division` is the
-- scale's, in the unit of each source.
--
-- Sums are exact. Weights with up to six decimals below a million are counted in millionths, which
-- is fast; all others as numeric. Few loads of an operator show no share. The days are divided into
-- four parts, which parallel workers can take.
CREATE OR REPLACE FUNCTION vrx.accuracy(
  from_day date, to_day date, keys text[] DEFAULT '{}', unit text DEFAULT 'KG',
  within_percent numeric DEFAULT 2, within_kg numeric DEFAULT 5, beyond_kg numeric DEFAULT 62.5,
  division numeric DEFAULT 0, deliveries boolean DEFAULT false)
RETURNS TABLE (
  key text[], n bigint, not_loaded bigint, not_loaded_target float8, without_target bigint,
  without_target_actual float8, target float8, actual float8, net float8, net_percent float8,
  gross float8, gross_percent float8, within float8, weight_within float8, within_weight float8,
  beyond float8, below float8, median float8, q1 float8, q3 float8, marked boolean)
LANGUAGE plpgsql STABLE SET search_path = pg_catalog, pg_temp SET extra_float_digits = 1
SET jit = off SET enable_sort = off SET parallel_setup_cost = 0 SET parallel_tuple_cost = 0
SET min_parallel_table_scan_size = '1TB' SET min_parallel_index_scan_size = '1TB' AS $$
DECLARE
  name text;
  part text;
  key_names text := '';
  key_columns text := '';
  source_of_rows text;
  aliases boolean := 'ingredient' = ANY (keys) AND EXISTS (SELECT FROM vrx.ingredient_alias);
  sums text := '';
  -- Below it, a weight of whole millionths is fast.
  small float8 := CASE WHEN within_percent <= 900
    AND within_percent * 10000 = trunc(within_percent * 10000) THEN 1e6 ELSE 0 END;
BEGIN
  IF unit IS NULL OR unit NOT IN ('KG', 'LB')
     OR NOT coalesce(least(within_percent, within_kg, beyond_kg, division) >= 0, false) THEN
    RAISE EXCEPTION 'the unit is KG or LB, and limits are numbers from 0'
      USING ERRCODE = 'invalid_parameter_value';
  ELSIF keys && ARRAY['operator', 'pen'] AND NOT 'yard' = ANY (keys) THEN
    RAISE EXCEPTION 'operators and pens go with their yard: add the key yard'
      USING ERRCODE = 'invalid_parameter_value';
  END IF;
  FOREACH name IN ARRAY keys LOOP
    IF vrx.key_column(name, deliveries) IS NULL THEN
      RAISE EXCEPTION 'there is no key "%"', name USING ERRCODE = 'invalid_parameter_value';
    END IF;
    key_names := key_names || ', ' || quote_ident('k_' || name);
    key_columns := key_columns || ', ' || vrx.key_column(
      CASE WHEN name = 'ingredient' AND NOT aliases THEN 'own_ingredient' ELSE name END, deliveries)
      || ' AS '
                   || quote_ident('k_' || name);
  END LOOP;
  -- Most companies have withdrawn nothing and have no import in another unit.
  IF EXISTS (SELECT FROM vrx.withdrawal)
     OR EXISTS (SELECT FROM vrx.import_in_other_unit o WHERE o.use <> 'keep') THEN
    source_of_rows := $rows$
      SELECT r.recipe, r.operator, r.ingredient, r.pen, r.target, r.actual
      FROM vrx.counted_row r WHERE r.yard_id = b.yard_id AND r.source = b.source
        AND r.batch BETWEEN b.low AND b.high AND r.is_load = NOT $8
        AND (b.batches IS NULL OR r.batch = ANY (b.batches))$rows$;
  ELSE
    source_of_rows := format($rows$
      SELECT nullif(t.recipe, '') AS recipe, nullif(nullif(t.user_id, ''), '-1') AS operator,
             nullif(%1$s, '') AS %1$s, coalesce(t.target, 0) AS target,
             coalesce(t.%2$s, 0) AS actual
      FROM vrx.transaction t WHERE t.yard = b.yard_id AND t.source = b.source
        AND t.batch BETWEEN b.low AND b.high AND t.type = %3$L
        AND (b.batches IS NULL OR t.batch = ANY (b.batches))$rows$,
      CASE WHEN deliveries THEN 'pen' ELSE 'ingredient' END,
      CASE WHEN deliveries THEN 'actual_feed' ELSE 'actual_batch' END,
      CASE WHEN deliveries THEN 'FEED' ELSE 'BATCH' END);
  END IF;
  -- Groups are hashed, and only their percentages are sorted: sorting whole rows by names is slow.
  -- OFFSET '0' keeps the planner from putting an expression into each place that uses it; without
  -- the quotes it would be an expression itself, and keep parallel workers away, as would a window
  -- function. The batches of a day mostly have successive numbers: 256 of them are one search.
  part := format($part$
    (SELECT %1$s pounds, kind, count(*) AS n,
            count(*) FILTER (WHERE CASE WHEN slow THEN g <= $11 OR g * 100 < t * $2
              ELSE g6 <= $10 OR g6 * 1000000 < t6 * $9 END) AS within,
            count(*) FILTER (WHERE CASE WHEN slow THEN g <= $11
                OR vrx.in_unit(g, CASE WHEN pounds THEN 'LB' ELSE 'KG' END, 'KG') < $4
              ELSE g6 <= $10 OR g6 < CASE WHEN pounds THEN $13 ELSE $14 END END) AS near,
            count(*) FILTER (WHERE CASE WHEN slow
                THEN vrx.in_unit(g, CASE WHEN pounds THEN 'LB' ELSE 'KG' END, 'KG') > $5
              ELSE g6 > CASE WHEN pounds THEN $15 ELSE $16 END END) AS far,
            count(*) FILTER (WHERE CASE WHEN slow THEN a < t ELSE a6 < t6 END) AS below,
            count(*) FILTER (WHERE CASE WHEN slow THEN t - a > $11 ELSE t6 - a6 > $10 END)
              AS well_below,
            coalesce(sum(t6), 0) * 0.000001 + coalesce(sum(t), 0) AS target,
            coalesce(sum(a6), 0) * 0.000001 + coalesce(sum(a), 0) AS actual,
            coalesce(sum(g6), 0) * 0.000001 + coalesce(sum(g), 0) AS gross,
            coalesce(sum(t6) FILTER (WHERE g6 <= $10 OR g6 * 1000000 < t6 * $9), 0) * 0.000001
            + coalesce(sum(t) FILTER (WHERE g <= $11 OR g * 100 < t * $2), 0) AS target_within,
            array_agg(CASE WHEN kind > 0 THEN NULL
              WHEN slow THEN (round((a - t) * 100, 30) / t)::float8
              ELSE ((a6 - t6) * 100)::float8 / t6::float8 END) AS percents
     FROM (SELECT %1$s pounds, NOT fast AS slow,
                  CASE WHEN target > 0 THEN CASE WHEN actual > 0 THEN 0 ELSE 1 END ELSE 2 END
                    AS kind,
                  CASE WHEN fast THEN (target * 1e6)::bigint END AS t6,
                  CASE WHEN fast THEN (actual * 1e6)::bigint END AS a6,
                  CASE WHEN fast THEN abs((actual * 1e6)::bigint - (target * 1e6)::bigint) END AS g6,
                  CASE WHEN NOT fast THEN vrx.exact(target) END AS t,
                  CASE WHEN NOT fast THEN vrx.exact(actual) END AS a,
                  CASE WHEN NOT fast THEN abs(vrx.exact(actual) - vrx.exact(target)) END AS g
           FROM (SELECT %2$s b.unit = 'LB' AS pounds, r.target, r.actual,
                        CASE WHEN abs(r.target) < $3 AND abs(r.actual) < $3
                          THEN (r.target * 1e6)::bigint / 1e6::float8 = r.target
                               AND (r.actual * 1e6)::bigint / 1e6::float8 = r.actual
                          ELSE false END AS fast
                 FROM (SELECT b.yard_id, b.source, b.day, y.name, s.unit, min(b.batch) AS low,
                              max(b.batch) AS high,
                              CASE WHEN count(*) <= max(b.batch) - min(b.batch)
                                THEN array_agg(b.batch) END AS batches
                       FROM vrx.yard y
                       JOIN %6$s b ON b.yard_id = y.yard
                       JOIN vrx.source s ON s.yard = b.yard_id AND s.source = b.source
                       WHERE coalesce(b.day - '2000-01-01'::date, 0) & 3 = <part> %3$s
                       GROUP BY b.yard_id, b.source, b.day, y.name, s.unit, b.batch >> 8
                       OFFSET '0') b
                 CROSS JOIN LATERAL (%4$s) r
                 %5$s OFFSET '0') weighed OFFSET '0') exact
     GROUP BY %1$s pounds, kind)
    $part$, substr(key_names || ', ', 3), substr(key_columns || ', ', 3),
    CASE WHEN from_day IS NOT NULL THEN 'AND b.day >= $6 ' ELSE '' END
    || CASE WHEN to_day IS NOT NULL THEN 'AND b.day <= $7' ELSE '' END,
    source_of_rows,
    CASE WHEN aliases THEN
      'LEFT JOIN vrx.ingredient_alias a ON a.yard = b.yard_id AND a.name = r.ingredient'
      ELSE '' END,
    -- A batch without a load has none to judge.
    CASE WHEN deliveries THEN 'vrx.batch' ELSE '(SELECT d.yard AS yard_id, d.source, d.batch, d.day '
      'FROM vrx.batch_day d WHERE d.of_load)' END);
  -- Sums are made per unit and then converted. Kind 0 counts, 1 was not loaded, 2 has no target.
  FOREACH name IN ARRAY ARRAY['0; target; target', '0; actual; actual', '0; gross; gross',
                              '0; target_within; target_within', '1; target; not_loaded_target',
                              '2; actual; without_target_actual'] LOOP
    sums := sums || format($sum$,
      coalesce(vrx.in_unit(sum(p.%2$s) FILTER (WHERE kind = %1$s AND pounds), 'LB', $1), 0)
      + coalesce(vrx.in_unit(sum(p.%2$s) FILTER (WHERE kind = %1$s AND NOT pounds), 'KG', $1), 0)
      AS %3$s$sum$, split_part(name, '; ', 1), split_part(name, '; ', 2), split_part(name, '; ', 3));
  END LOOP;
  FOREACH name IN ARRAY ARRAY['0; n; n', '0; within; within', '0; near; near', '0; far; far',
                              '0; below; below', '0; well_below; well_below', '1; n; not_loaded',
                              '2; n; without_target'] LOOP
    sums := sums || format($sum$,
      coalesce(sum(p.%2$s) FILTER (WHERE kind = %1$s), 0)::bigint AS %3$s$sum$,
      split_part(name, '; ', 1), split_part(name, '; ', 2), split_part(name, '; ', 3));
  END LOOP;
  RETURN QUERY EXECUTE format($query$
    WITH grouped AS (
      SELECT ARRAY[%1$s]::text[] AS key,
             vrx.joined(p.percents) FILTER (WHERE kind = 0) AS percents %2$s
      FROM (%3$s UNION ALL %4$s UNION ALL %5$s UNION ALL %6$s) p GROUP BY %7$s)
    SELECT g.key, g.n, g.not_loaded,
           CASE WHEN g.not_loaded > 0 THEN g.not_loaded_target::float8 END, g.without_target,
           CASE WHEN g.without_target > 0 THEN g.without_target_actual::float8 END,
           CASE WHEN g.n > 0 THEN g.target::float8 END, CASE WHEN g.n > 0 THEN g.actual::float8 END,
           CASE WHEN g.n > 0 THEN (g.actual - g.target)::float8 END,
           CASE WHEN g.n > 0 THEN (round(100 * (g.actual - g.target), 30) / g.target)::float8 END,
           CASE WHEN g.n > 0 THEN g.gross::float8 END,
           CASE WHEN g.n > 0 THEN (round(100 * g.gross, 30) / g.target)::float8 END,
           CASE WHEN s.shares THEN (round(100 * g.within::numeric, 30) / g.n)::float8 END,
           CASE WHEN s.shares THEN (round(100 * g.target_within, 30) / g.target)::float8 END,
           CASE WHEN s.shares THEN (round(100 * g.near::numeric, 30) / g.n)::float8 END,
           CASE WHEN s.shares THEN (round(100 * g.far::numeric, 30) / g.n)::float8 END,
           CASE WHEN s.shares THEN (round(100 * g.below::numeric, 30) / g.n)::float8 END,
           q.quartiles[2], q.quartiles[1], q.quartiles[3],
           CASE WHEN g.n >= 40 AND NOT $8 THEN
             g.well_below * 100 >= g.n * 75 AND q.quartiles[2] <= -0.5 END
    FROM grouped g
    CROSS JOIN LATERAL (
      SELECT percentile_cont(ARRAY[0.25, 0.5, 0.75]) WITHIN GROUP (ORDER BY p) AS quartiles
      FROM unnest(g.percents) p) q
    CROSS JOIN LATERAL (SELECT g.n > 0 AND (NOT $12 OR g.n >= 20) AS shares) s
    ORDER BY g.key
    $query$, substr(key_names, 3), sums, replace(part, '<part>', '0'), replace(part, '<part>', '1'),
    replace(part, '<part>', '2'), replace(part, '<part>', '3'),
    CASE key_names WHEN '' THEN '()' ELSE substr(key_names, 3) END)
  USING unit, within_percent, small, within_kg, beyond_kg, from_day, to_day, deliveries,
        (within_percent * 10000)::bigint, floor(division * 1000000)::bigint, division,
        'operator' = ANY (keys) AND NOT deliveries,
        ceil(vrx.in_unit(within_kg, 'KG', 'LB') * 1000000)::bigint,
        ceil(within_kg * 1000000)::bigint,
        floor(vrx.in_unit(beyond_kg, 'KG', 'LB') * 1000000)::bigint,
        floor(beyond_kg * 1000000)::bigint;
END
$$;

GRANT EXECUTE ON FUNCTION vrx.key_column(text, boolean), vrx.joined(float8[]),
  vrx.accuracy(date, date, text[], text, numeric, numeric, numeric, numeric, boolean)
  TO vrx_yard, vrx_office, vrx_administrator;
