-- What the office's figures need beside the views.

-- As of when each yard is. A yard is behind when its last push is older than a day and a half, or
-- when it never pushed. Withdrawn sources do not count.
CREATE OR REPLACE VIEW vrx.yard_as_of WITH (security_invoker) AS
SELECT f.yard, f.zone, max(f.last_push) FILTER (WHERE NOT f.withdrawn) AS as_of,
       max(f.last_day) FILTER (WHERE NOT f.withdrawn) AS last_day,
       coalesce(max(f.last_push) FILTER (WHERE NOT f.withdrawn)
                < clock_timestamp() - interval '36 hours', true) AS behind
FROM vrx.freshness f
GROUP BY f.yard, f.zone;

-- Operators are compared within an ingredient, as some are hard to load: the mean of an operator's
-- shares within the limit per ingredient, weighted by the targets that all operators of the yard have
-- of it, over the ingredients that the operator loaded. In percent. Few loads show no share.
--
-- Without statistics the planner takes rows for few and joins them by loops over loops.
CREATE OR REPLACE FUNCTION vrx.standardized(
  from_day date, to_day date, within_percent numeric DEFAULT 2, division numeric DEFAULT 0)
RETURNS TABLE (yard text, operator text, n bigint, standardized float8)
LANGUAGE sql STABLE SET search_path = pg_catalog, pg_temp SET extra_float_digits = 1
SET jit = off SET enable_nestloop = off AS $$
  WITH judged AS MATERIALIZED (
    SELECT l.yard, l.operator, l.ingredient, l.unit, e.t,
           abs(e.a - e.t) * 100 < e.t * within_percent OR abs(e.a - e.t) <= division AS within
      FROM vrx.load l
      CROSS JOIN LATERAL (SELECT vrx.exact(l.target) AS t, vrx.exact(l.actual) AS a OFFSET 0) e
      WHERE e.t > 0 AND e.a > 0 AND (from_day IS NULL OR l.day >= from_day)
        AND (to_day IS NULL OR l.day <= to_day)),
  weight AS (
    SELECT j.yard, j.ingredient,
           coalesce(vrx.in_unit(sum(j.t) FILTER (WHERE j.unit = 'LB'), 'LB', 'KG'), 0)
           + coalesce(sum(j.t) FILTER (WHERE j.unit = 'KG'), 0) AS t
      FROM judged j GROUP BY j.yard, j.ingredient),
  share AS (
    SELECT j.yard, j.operator, j.ingredient, count(*) AS n,
           count(*) FILTER (WHERE j.within) AS within
      FROM judged j GROUP BY j.yard, j.operator, j.ingredient)
  SELECT s.yard, s.operator, sum(s.n)::bigint,
         CASE WHEN sum(s.n) >= 20
           THEN (sum(round(100 * w.t * s.within, 30) / s.n) / sum(w.t))::float8 END
    FROM share s
    JOIN weight w ON w.yard = s.yard AND w.ingredient IS NOT DISTINCT FROM s.ingredient
    GROUP BY s.yard, s.operator
$$;

REVOKE ALL ON FUNCTION vrx.standardized(date, date, numeric, numeric) FROM PUBLIC;
GRANT EXECUTE ON FUNCTION vrx.standardized(date, date, numeric, numeric)
  TO vrx_yard, vrx_office, vrx_administrator;
GRANT SELECT ON vrx.yard_as_of TO vrx_yard, vrx_office, vrx_administrator;
