CREATE TABLE contact_group (
    key_index INTEGER PRIMARY KEY CHECK (key_index BETWEEN 0 AND 29),
    name      TEXT NOT NULL,
    rest      BLOB
);

CREATE TABLE contact (
    record_index INTEGER PRIMARY KEY CHECK (record_index BETWEEN 1 AND 10000),
    last_name    TEXT NOT NULL DEFAULT '',
    first_name   TEXT NOT NULL DEFAULT '',
    nickname     TEXT NOT NULL DEFAULT '',
    job_title    TEXT NOT NULL DEFAULT '',
    company_name TEXT NOT NULL DEFAULT '',
    birthday     TEXT NOT NULL DEFAULT '', -- local time, see date_text.h
    save_time    TEXT NOT NULL DEFAULT '', -- local time of the last save
    note         TEXT,
    note_size    INTEGER CHECK (note_size BETWEEN 1 AND 2147483647), -- NULL: the note and its terminator
    note_rest    BLOB,
    rest         BLOB
);

CREATE TABLE phone (
    record_index INTEGER NOT NULL REFERENCES contact ON DELETE CASCADE,
    position     INTEGER NOT NULL,
    type         INTEGER NOT NULL DEFAULT -1,
    number       TEXT NOT NULL DEFAULT '',
    rest         BLOB,
    PRIMARY KEY (record_index, position)
) WITHOUT ROWID;

CREATE TABLE email (
    record_index INTEGER NOT NULL REFERENCES contact ON DELETE CASCADE,
    position     INTEGER NOT NULL,
    type         INTEGER NOT NULL DEFAULT -1,
    email        TEXT NOT NULL DEFAULT '',
    rest         BLOB,
    PRIMARY KEY (record_index, position)
) WITHOUT ROWID;

CREATE TABLE homepage (
    record_index INTEGER NOT NULL REFERENCES contact ON DELETE CASCADE,
    slot         INTEGER NOT NULL CHECK (slot BETWEEN 0 AND 4),
    type         INTEGER NOT NULL DEFAULT -1,
    homepage     TEXT NOT NULL DEFAULT '',
    PRIMARY KEY (record_index, slot)
) WITHOUT ROWID;

CREATE TABLE address (
    record_index    INTEGER NOT NULL REFERENCES contact ON DELETE CASCADE,
    position        INTEGER NOT NULL,
    type            INTEGER NOT NULL DEFAULT -1,
    full_text       TEXT NOT NULL DEFAULT '',
    street          TEXT NOT NULL DEFAULT '',
    additional_info TEXT NOT NULL DEFAULT '',
    city            TEXT NOT NULL DEFAULT '',
    postal_code     TEXT NOT NULL DEFAULT '',
    state           TEXT NOT NULL DEFAULT '',
    country         TEXT NOT NULL DEFAULT '',
    pobox           TEXT NOT NULL DEFAULT '',
    rest            BLOB,
    PRIMARY KEY (record_index, position)
) WITHOUT ROWID;

-- The membership bytes of a contact that are not zero. A byte whose key index no group bears is carried like the
-- others, but means nothing; it goes when a group comes to bear that key index.
CREATE TABLE membership (
    record_index INTEGER NOT NULL REFERENCES contact ON DELETE CASCADE,
    key_index    INTEGER NOT NULL CHECK (key_index BETWEEN 0 AND 70),
    value        INTEGER NOT NULL DEFAULT 1 CHECK (value BETWEEN 1 AND 255),
    PRIMARY KEY (record_index, key_index)
) WITHOUT ROWID;

-- The highest record index of a deleted contact: it is not given again while there are higher ones.
CREATE TABLE retired_index (highest INTEGER NOT NULL);
INSERT INTO retired_index VALUES (0);
CREATE TRIGGER contact_retired AFTER DELETE ON contact BEGIN
    UPDATE retired_index SET highest = old.record_index WHERE highest < old.record_index;
END;
