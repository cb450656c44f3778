-- Roles of the central database. Roles belong to the whole server, so they may exist already.
DO $$
DECLARE
  role_name text;
BEGIN
  FOREACH role_name IN ARRAY ARRAY['vrx_owner', 'vrx_yard', 'vrx_office', 'vrx_nutritionist',
                                   'vrx_administrator'] LOOP
    IF NOT EXISTS (SELECT FROM pg_catalog.pg_roles WHERE rolname = role_name) THEN
      EXECUTE format('CREATE ROLE %I NOLOGIN', role_name);
    END IF;
  END LOOP;
  -- Who creates the schema acts as its owner; a superuser is a member of every role.
  FOREACH role_name IN ARRAY ARRAY['vrx_owner', 'vrx_administrator'] LOOP
    IF NOT pg_catalog.pg_has_role(current_user, role_name, 'MEMBER') THEN
      EXECUTE format('GRANT %I TO %I', role_name, current_user);
    END IF;
  END LOOP;
  EXECUTE format('REVOKE ALL ON DATABASE %I FROM PUBLIC', current_database());
  EXECUTE format('GRANT CONNECT ON DATABASE %I TO vrx_yard, vrx_office, vrx_nutritionist, '
                 'vrx_administrator', current_database());
  -- A push needs a temporary table.
  EXECUTE format('GRANT TEMPORARY ON DATABASE %I TO vrx_yard', current_database());
END
$$;

CREATE SCHEMA vrx AUTHORIZATION vrx_owner;
