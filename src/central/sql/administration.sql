-- What an administrator does. The functions are the owner's; its policies let them see rows only
-- where the session belongs to an administrator. Each change of figures is journalled.

CREATE OR REPLACE FUNCTION vrx.add_yard(name text, zone text, login text) RETURNS uuid
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
DECLARE
  id uuid;
BEGIN
  IF NOT EXISTS (SELECT FROM pg_timezone_names z WHERE z.name = add_yard.zone) THEN
    RAISE EXCEPTION 'there is no time zone "%"', zone USING ERRCODE = 'invalid_parameter_value';
  END IF;
  IF EXISTS (SELECT FROM vrx.yard y WHERE y.name = add_yard.name) THEN
    RAISE EXCEPTION 'there is a yard "%" already', name USING ERRCODE = 'unique_violation';
  ELSIF EXISTS (SELECT FROM vrx.login l WHERE l.login = add_yard.login) THEN
    RAISE EXCEPTION 'the login "%" belongs to another yard', login
      USING ERRCODE = 'unique_violation';
  END IF;
  INSERT INTO vrx.yard (name, zone) VALUES (add_yard.name, add_yard.zone) RETURNING yard INTO id;
  INSERT INTO vrx.login (login, yard) VALUES (add_yard.login, id);
  RETURN id;
END
$$;

-- An empty company name removes the alias.
CREATE OR REPLACE FUNCTION vrx.set_alias(yard_name text, name text, company_name text) RETURNS void
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
DECLARE
  id uuid;
BEGIN
  SELECT y.yard INTO id FROM vrx.yard y WHERE y.name = yard_name;
  IF id IS NULL THEN
    RAISE EXCEPTION 'there is no yard "%"', yard_name USING ERRCODE = 'no_data_found';
  END IF;
  DELETE FROM vrx.ingredient_alias a WHERE a.yard = id AND a.name = set_alias.name;
  IF company_name <> '' THEN
    INSERT INTO vrx.ingredient_alias (yard, name, company_name)
      VALUES (id, set_alias.name, set_alias.company_name);
  END IF;
END
$$;

-- Notes a withdrawal and returns how many rows it covers. Without rows it is the whole source, also
-- what comes later.
CREATE OR REPLACE FUNCTION vrx.withdraw(source_id uuid, first_row bigint, last_row bigint, why text,
                                        erase boolean) RETURNS bigint
LANGUAGE plpgsql SECURITY DEFINER SET search_path = pg_catalog, pg_temp AS $$
DECLARE
  yards uuid[];
  low bigint := coalesce(first_row, '-9223372036854775808'::bigint);
  high bigint := coalesce(last_row, 9223372036854775807);
  covered bigint;
  batches bigint[];
  open_imports bigint[];
  begun bigint[];  -- batches that began in the source that this one is a copy of
  homes uuid[];
  days date[];
BEGIN
  SELECT array_agg(s.yard) INTO yards FROM vrx.source s WHERE s.source = source_id;
  IF yards IS NULL THEN
    RAISE EXCEPTION 'there is no source %', source_id USING ERRCODE = 'no_data_found';
  ELSIF cardinality(yards) > 1 THEN
    RAISE EXCEPTION 'more than one yard has a source %', source_id
      USING ERRCODE = 'cardinality_violation';
  END IF;
  SELECT count(*), array_agg(DISTINCT t.batch) INTO covered, batches FROM vrx.transaction t
    WHERE t.yard = yards[1] AND t.source = source_id AND t.row BETWEEN low AND high;
  INSERT INTO vrx.withdrawal (yard, source, first_row, last_row, erased, rows, why)
    VALUES (yards[1], source_id, withdraw.first_row, withdraw.last_row, erase, covered,
            withdraw.why);
  IF erase THEN
    DELETE FROM vrx.transaction t
      WHERE t.yard = yards[1] AND t.source = source_id AND t.row BETWEEN low AND high;
  END IF;
  SELECT coalesce(array_agg(o.import), '{}') INTO open_imports FROM vrx.import_in_other_unit o
    WHERE o.yard_id = yards[1] AND o.source = source_id AND o.use = 'open';
  -- What is left of the batches may begin on another day, unless they began elsewhere.
  SELECT array_agg(d.batch), array_agg(d.home), array_agg(d.day) INTO begun, homes, days
    FROM vrx.batch_day d
    WHERE d.yard = yards[1] AND d.source = source_id AND d.batch = ANY (batches)
      AND d.home <> source_id;
  DELETE FROM vrx.batch_day d
    WHERE d.yard = yards[1] AND d.source = source_id AND d.batch = ANY (batches);
  INSERT INTO vrx.batch_day (yard, source, batch, of_load, day, home)
    SELECT DISTINCT ON (t.batch) t.yard, t.source, t.batch, t.type = 'BATCH',
           coalesce(h.day, t.day), coalesce(h.home, t.source)
      FROM vrx.transaction t
      LEFT JOIN (SELECT DISTINCT ON (u.batch) u.batch, u.home, u.day
                   FROM unnest(begun, homes, days) AS u (batch, home, day)) h ON h.batch = t.batch
      WHERE t.yard = yards[1] AND t.source = source_id AND t.batch = ANY (batches)
        AND t.type IN ('BATCH', 'FEED')
        AND NOT EXISTS (SELECT FROM vrx.withdrawal w WHERE w.yard = t.yard AND w.source = t.source
          AND (w.first_row IS NULL OR t.row BETWEEN w.first_row AND w.last_row))
        AND (t.import IS NULL OR t.import <> ALL (open_imports))
      ORDER BY t.batch, t.type, t.row;
  RETURN covered;
END
$$;

REVOKE ALL ON FUNCTION vrx.add_yard(text, text, text), vrx.set_alias(text, text, text),
  vrx.withdraw(uuid, bigint, bigint, text, boolean) FROM PUBLIC;
GRANT EXECUTE ON FUNCTION vrx.add_yard(text, text, text), vrx.set_alias(text, text, text),
  vrx.withdraw(uuid, bigint, bigint, text, boolean) TO vrx_administrator;
