-- Rights of schema version 1. Runs as vrx_owner.
--
-- Every table has forced row level security. The yard of a session comes from vrx.login by
-- session_user, which neither SET ROLE nor a function can change. The owner's functions see rows
-- only where the session belongs to an administrator, so that none of them can be used to look
-- into another yard.

CREATE FUNCTION vrx.session_yard() RETURNS uuid
LANGUAGE sql STABLE PARALLEL SAFE SET search_path = pg_catalog, pg_temp AS $$
  SELECT l.yard FROM vrx.login l WHERE l.login = session_user
$$;

CREATE FUNCTION vrx.is_administrator() RETURNS boolean
LANGUAGE sql STABLE PARALLEL SAFE SET search_path = pg_catalog, pg_temp AS $$
  SELECT pg_has_role(session_user, 'vrx_administrator', 'MEMBER')
$$;

DO $$
DECLARE
  name text;
BEGIN
  FOR name IN SELECT c.relname FROM pg_catalog.pg_class c
              WHERE c.relnamespace = 'vrx'::regnamespace AND c.relkind = 'r' LOOP
    EXECUTE format('ALTER TABLE vrx.%I ENABLE ROW LEVEL SECURITY', name);
    EXECUTE format('ALTER TABLE vrx.%I FORCE ROW LEVEL SECURITY', name);
    EXECUTE format('REVOKE ALL ON vrx.%I FROM PUBLIC', name);
    EXECUTE format('CREATE POLICY office_reads ON vrx.%I FOR SELECT '
                   'TO vrx_office, vrx_administrator USING (true)', name);
    EXECUTE format('CREATE POLICY owner_acts ON vrx.%I TO vrx_owner '
                   'USING ((SELECT vrx.is_administrator())) '
                   'WITH CHECK ((SELECT vrx.is_administrator()))', name);
    EXECUTE format('GRANT SELECT ON vrx.%I TO vrx_office, vrx_administrator', name);
  END LOOP;
  FOREACH name IN ARRAY ARRAY['yard', 'source', 'mark', 'import', 'imported_batch', 'transaction',
                              'batch_day', 'push', 'withdrawal', 'ingredient_alias', 'fetch',
                              'release_yard'] LOOP
    EXECUTE format('CREATE POLICY yard_reads ON vrx.%I FOR SELECT TO vrx_yard '
                   'USING (yard = (SELECT vrx.session_yard()))', name);
    EXECUTE format('GRANT SELECT ON vrx.%I TO vrx_yard', name);
  END LOOP;
  FOREACH name IN ARRAY ARRAY['source', 'mark', 'import', 'imported_batch', 'transaction',
                              'batch_day', 'push'] LOOP
    EXECUTE format('CREATE POLICY yard_adds ON vrx.%I FOR INSERT TO vrx_yard '
                   'WITH CHECK (yard = (SELECT vrx.session_yard()))', name);
  END LOOP;
  FOREACH name IN ARRAY ARRAY['ingredient', 'recipe', 'recipe_line', 'pen'] LOOP
    EXECUTE format('CREATE POLICY yard_reads ON vrx.%I FOR SELECT TO vrx_yard '
                   'USING (release IN (SELECT r.release FROM vrx.release r))', name);
    EXECUTE format('GRANT SELECT ON vrx.%I TO vrx_yard', name);
  END LOOP;
  -- A release grows only in the transaction that makes it.
  FOREACH name IN ARRAY ARRAY['release_yard', 'ingredient', 'recipe', 'recipe_line', 'pen'] LOOP
    EXECUTE format('CREATE POLICY nutritionist_adds ON vrx.%I FOR INSERT TO vrx_nutritionist '
                   'WITH CHECK (release IN (SELECT r.release FROM vrx.release r '
                   'WHERE r.login = session_user AND r.at >= transaction_timestamp()))', name);
    EXECUTE format('GRANT INSERT ON vrx.%I TO vrx_nutritionist', name);
  END LOOP;
  FOREACH name IN ARRAY ARRAY['yard', 'release', 'release_yard', 'ingredient', 'recipe',
                              'recipe_line', 'pen', 'fetch'] LOOP
    EXECUTE format('CREATE POLICY nutritionist_reads ON vrx.%I FOR SELECT TO vrx_nutritionist '
                   'USING (true)', name);
    EXECUTE format('GRANT SELECT ON vrx.%I TO vrx_nutritionist', name);
  END LOOP;
  -- The planner's statistics would show everybody, in the estimates of EXPLAIN, how often a name
  -- occurs in other yards.
  FOR name IN SELECT format('ALTER TABLE vrx.%I ALTER COLUMN %I SET STATISTICS 0', c.relname,
                            a.attname)
              FROM pg_catalog.pg_class c JOIN pg_catalog.pg_attribute a ON a.attrelid = c.oid
              WHERE c.relnamespace = 'vrx'::regnamespace AND c.relkind = 'r' AND a.attnum > 0 LOOP
    EXECUTE name;
  END LOOP;
END
$$;

CREATE POLICY version_for_all ON vrx.version FOR SELECT TO vrx_yard, vrx_nutritionist USING (true);
GRANT SELECT ON vrx.version TO vrx_yard, vrx_nutritionist;

CREATE POLICY yard_reads ON vrx.login FOR SELECT TO vrx_yard USING (login = session_user);
GRANT SELECT ON vrx.login TO vrx_yard;

CREATE POLICY yard_reads ON vrx.release FOR SELECT TO vrx_yard
  USING (for_all OR release IN (SELECT y.release FROM vrx.release_yard y));
CREATE POLICY nutritionist_adds ON vrx.release FOR INSERT TO vrx_nutritionist WITH CHECK (true);
GRANT SELECT ON vrx.release TO vrx_yard;
GRANT INSERT (release, unit, file, note, for_all) ON vrx.release TO vrx_nutritionist;

-- Only of what the yard may read, so that nothing shows which other releases there are.
CREATE POLICY yard_adds ON vrx.fetch FOR INSERT TO vrx_yard
  WITH CHECK (yard = (SELECT vrx.session_yard()) AND release IN (SELECT r.release FROM vrx.release r));

-- The server's own columns (time, login, what a push proves) are not granted.
GRANT INSERT (yard, source, generation, parent, parent_generation, parent_last_row, unit, file)
  ON vrx.source TO vrx_yard;
GRANT INSERT (yard, source, kind, import, value) ON vrx.mark TO vrx_yard;
GRANT INSERT ON vrx.import, vrx.imported_batch, vrx.batch_day TO vrx_yard;
GRANT INSERT (yard, source, row, number, recipe, type, user_id, ingredient, pen, target,
  actual_batch, time, date, actual_feed, ing_percent, weights, import, digest)
  ON vrx.transaction TO vrx_yard;
GRANT INSERT (yard, source, first_row, last_row, generation, unit, client) ON vrx.push TO vrx_yard;
GRANT INSERT (yard, release) ON vrx.fetch TO vrx_yard;

GRANT USAGE ON SCHEMA vrx TO vrx_yard, vrx_office, vrx_nutritionist, vrx_administrator;
REVOKE ALL ON ALL FUNCTIONS IN SCHEMA vrx FROM PUBLIC;
ALTER DEFAULT PRIVILEGES IN SCHEMA vrx REVOKE EXECUTE ON FUNCTIONS FROM PUBLIC;
ALTER DEFAULT PRIVILEGES REVOKE EXECUTE ON FUNCTIONS FROM PUBLIC;
GRANT EXECUTE ON FUNCTION vrx.session_yard(), vrx.stored_day(text)
  TO vrx_yard, vrx_office, vrx_nutritionist, vrx_administrator;
