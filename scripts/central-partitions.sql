-- Divides the records of a central database into eight partitions by yard. For a superuser, directly
-- after "central init" and before the first push; then "central init" once more, which makes the
-- views again:
--
--   psql -1 -v ON_ERROR_STOP=1 -f central-partitions.sql service=company
SET LOCAL search_path = pg_catalog, pg_temp;
SET LOCAL ROLE vrx_owner;

DO $$
BEGIN
  IF EXISTS (SELECT FROM vrx.source) THEN
    RAISE EXCEPTION 'there are records already';
  END IF;
END
$$;

ALTER TABLE vrx.transaction RENAME TO transaction_before;
CREATE TABLE vrx.transaction (LIKE vrx.transaction_before INCLUDING ALL) PARTITION BY HASH (yard);

-- The policies and grants of the table that it replaces.
DO $$
DECLARE
  statement text;
BEGIN
  FOR statement IN
    SELECT format('CREATE POLICY %I ON vrx.transaction FOR %s TO %s%s%s', p.polname,
             CASE p.polcmd WHEN 'r' THEN 'SELECT' WHEN 'a' THEN 'INSERT' ELSE 'ALL' END,
             (SELECT string_agg(quote_ident(r.rolname), ', ') FROM pg_roles r
                WHERE r.oid = ANY (p.polroles)),
             coalesce(' USING (' || pg_get_expr(p.polqual, p.polrelid) || ')', ''),
             coalesce(' WITH CHECK (' || pg_get_expr(p.polwithcheck, p.polrelid) || ')', ''))
      FROM pg_policy p WHERE p.polrelid = 'vrx.transaction_before'::regclass
    UNION ALL
    SELECT format('GRANT SELECT ON vrx.transaction TO %I', g.grantee)
      FROM information_schema.role_table_grants g
      WHERE g.table_schema = 'vrx' AND g.table_name = 'transaction_before'
        AND g.privilege_type = 'SELECT' AND g.grantee <> 'vrx_owner'
    UNION ALL
    SELECT format('GRANT INSERT (%s) ON vrx.transaction TO vrx_yard',
                  string_agg(quote_ident(g.column_name), ', '))
      FROM information_schema.column_privileges g
      WHERE g.table_schema = 'vrx' AND g.table_name = 'transaction_before'
        AND g.privilege_type = 'INSERT' AND g.grantee = 'vrx_yard'
    UNION ALL
    SELECT format('CREATE TABLE vrx.transaction_%s PARTITION OF vrx.transaction '
                  'FOR VALUES WITH (MODULUS 8, REMAINDER %s)', i, i) FROM generate_series(0, 7) i
  LOOP
    EXECUTE statement;
  END LOOP;
  -- As on every table: no statistics that would show names of other yards.
  FOR statement IN
    SELECT format('ALTER TABLE vrx.%I ALTER COLUMN %I SET STATISTICS 0', c.relname, a.attname)
      FROM pg_class c JOIN pg_attribute a ON a.attrelid = c.oid
      WHERE c.relnamespace = 'vrx'::regnamespace AND c.relname LIKE 'transaction%'
        AND c.relname <> 'transaction_before' AND c.relkind IN ('r', 'p') AND a.attnum > 0
    UNION ALL
    SELECT format('ALTER TABLE vrx.%I %s ROW LEVEL SECURITY', c.relname, w.word)
      FROM pg_class c, (VALUES ('ENABLE'), ('FORCE')) w (word)
      WHERE c.relnamespace = 'vrx'::regnamespace AND c.relname LIKE 'transaction%'
        AND c.relname <> 'transaction_before' AND c.relkind IN ('r', 'p')
  LOOP
    EXECUTE statement;
  END LOOP;
END
$$;

DROP TABLE vrx.transaction_before CASCADE;
