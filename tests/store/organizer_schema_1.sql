CREATE TABLE record (
    record_index        INTEGER PRIMARY KEY CHECK (record_index BETWEEN 1 AND 10000),
    type                INTEGER NOT NULL CHECK (type IN (8, 9)), -- the store's: event or to-do
    kind                INTEGER NOT NULL DEFAULT 0,              -- the record's own: 1 event, 2 to-do
    summary             TEXT NOT NULL DEFAULT '' CHECK (length(CAST(summary AS BLOB)) <= 256),
    description         TEXT NOT NULL DEFAULT '' CHECK (length(CAST(description AS BLOB)) <= 1024),
    location            TEXT NOT NULL DEFAULT '' CHECK (length(CAST(location AS BLOB)) <= 160),
    start_date_time     TEXT NOT NULL DEFAULT '', -- this and the other times: local time, see date_text.h
    end_date_time       TEXT NOT NULL DEFAULT '',
    alarm_time          TEXT NOT NULL DEFAULT '',
    repeat_term         INTEGER NOT NULL DEFAULT 0,
    repeat_interval     INTEGER NOT NULL DEFAULT 0,
    repeat_end_or_due   TEXT NOT NULL DEFAULT '',
    last_modified_time  TEXT NOT NULL DEFAULT '',
    completed           INTEGER NOT NULL DEFAULT 0,
    priority            INTEGER NOT NULL DEFAULT 0,
    text_172            TEXT NOT NULL DEFAULT '' CHECK (length(CAST(text_172 AS BLOB)) <= 355),
    text_340            TEXT NOT NULL DEFAULT '' CHECK (length(CAST(text_340 AS BLOB)) <= 256),
    text_344            TEXT NOT NULL DEFAULT '' CHECK (length(CAST(text_344 AS BLOB)) <= 256),
    text_348            TEXT NOT NULL DEFAULT '' CHECK (length(CAST(text_348 AS BLOB)) <= 256),
    rest                BLOB
);

-- The lists of the process's snapshot are read from this index alone.
CREATE INDEX record_by_type ON record (type);

-- The highest record index of a deleted record: it is not given again while there are higher ones.
CREATE TABLE retired_index (highest INTEGER NOT NULL);
INSERT INTO retired_index VALUES (0);
CREATE TRIGGER record_retired AFTER DELETE ON record BEGIN
    UPDATE retired_index SET highest = old.record_index WHERE highest < old.record_index;
END;

CREATE VIEW event AS SELECT
    record_index, summary, location, start_date_time, end_date_time, alarm_time,
    CASE repeat_term WHEN 0 THEN '' WHEN 1 THEN 'daily' WHEN 2 THEN 'weekly' WHEN 3 THEN 'monthly'
                     WHEN 4 THEN 'yearly' ELSE repeat_term END AS repeat_term,
    repeat_interval, repeat_end_or_due AS repeat_end, last_modified_time, description
FROM record WHERE type = 8;

CREATE VIEW todo AS SELECT
    record_index, summary, repeat_end_or_due AS due, completed, end_date_time AS completion_date,
    CASE priority WHEN 0 THEN 'low' WHEN 1 THEN 'middle' WHEN 2 THEN 'high' ELSE priority END AS priority,
    last_modified_time, description
FROM record WHERE type = 9;
