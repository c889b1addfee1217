-- SPDX-License-Identifier: MIT
-- A store of the third version, which a second one has written to, too: the stream has it up to the sixth entry, but for
-- two that it did not accept. The first sheet has been forgotten.
PRAGMA auto_vacuum = INCREMENTAL;
BEGIN;
CREATE TABLE store (
    identity TEXT NOT NULL,
    last INTEGER NOT NULL -- the id that was given last
);
CREATE TABLE setup (
    id INTEGER PRIMARY KEY,
    model INTEGER NOT NULL,
    threshold INTEGER NOT NULL,
    form TEXT NOT NULL,
    UNIQUE (model, threshold, form)
);
CREATE TABLE batch (
    id INTEGER PRIMARY KEY,
    store TEXT NOT NULL,
    station TEXT NOT NULL,
    reader TEXT NOT NULL,
    name TEXT NOT NULL,
    sheets INTEGER NOT NULL DEFAULT 0, -- the number that was given last
    UNIQUE (store, station, reader, name)
);
CREATE TABLE sheet (
    id INTEGER PRIMARY KEY,
    identity TEXT NOT NULL UNIQUE,
    batch INTEGER NOT NULL REFERENCES batch,
    number INTEGER NOT NULL,
    time TEXT NOT NULL,
    setup INTEGER NOT NULL REFERENCES setup,
    side1 TEXT,
    side2 TEXT,
    side1TimingMarks INTEGER NOT NULL,
    side2TimingMarks INTEGER NOT NULL,
    barcodes TEXT NOT NULL,
    record TEXT,
    rejected INTEGER NOT NULL,
    printed INTEGER NOT NULL,
    printedLines TEXT NOT NULL,
    UNIQUE (batch, number)
);
CREATE INDEX sheet_time ON sheet (time);
CREATE TABLE failure (
    id INTEGER PRIMARY KEY,
    identity TEXT NOT NULL UNIQUE,
    batch INTEGER NOT NULL REFERENCES batch,
    afterSheet INTEGER NOT NULL,
    time TEXT NOT NULL,
    line INTEGER NOT NULL,
    number INTEGER NOT NULL,
    type INTEGER NOT NULL,
    description TEXT NOT NULL,
    source TEXT NOT NULL,
    title TEXT NOT NULL
);
CREATE INDEX failure_time ON failure (time);
CREATE VIEW sheets AS
    SELECT sheet.id, batch.station, batch.reader, batch.name AS batch, sheet.number, sheet.time, setup.model,
           sheet.side1, sheet.side2, sheet.side1TimingMarks, sheet.side2TimingMarks, sheet.barcodes, sheet.record,
           sheet.rejected, sheet.printed
    FROM sheet JOIN batch ON batch.id = sheet.batch JOIN setup ON setup.id = sheet.setup;
ALTER TABLE store ADD COLUMN sends INTEGER NOT NULL DEFAULT 0; -- whether a stream is to have what the store holds
ALTER TABLE store ADD COLUMN sent INTEGER NOT NULL DEFAULT 0; -- the stream has all up to this id
CREATE TABLE unread ( -- messages from a stream that hold no entry
    id INTEGER PRIMARY KEY,
    time TEXT NOT NULL,
    subject TEXT NOT NULL,
    reason TEXT NOT NULL,
    content BLOB NOT NULL,
    UNIQUE (subject, content)
);
CREATE TABLE held ( -- entries up to the mark that the stream does not take
    id INTEGER PRIMARY KEY,
    reason TEXT NOT NULL
);
INSERT INTO store VALUES ('9f2c41d07be6583a1c0d94e7b2f86a53', 8, 1, 6);
INSERT INTO setup VALUES (1, 13, 7, '{"side1Rows":[63],"side1Cols":[48]}');
INSERT INTO batch VALUES
    (1, '9f2c41d07be6583a1c0d94e7b2f86a53', 'hall', 'left', 'all', 4),
    (2, '9f2c41d07be6583a1c0d94e7b2f86a53', 'hall', 'right', 'all', 3);
INSERT INTO sheet VALUES
    (2, '9f2c41d07be6583a1c0d94e7b2f86a53-2', 2, 1, '2024-03-02T08:00:02.250Z', 1,
     '{"rows":3,"columns":4,"marks":[[3,2,9],[3,4,-1]]}', NULL, 3, -1, '["2"]', NULL, 0, 0, '[]'),
    (3, '9f2c41d07be6583a1c0d94e7b2f86a53-3', 1, 2, '2024-03-02T08:00:03.250Z', 1,
     '{"rows":3,"columns":4,"marks":[[1,2,9],[3,4,-1]]}', NULL, 3, -1, '["3"]', NULL, 0, 0, '[]'),
    (4, '9f2c41d07be6583a1c0d94e7b2f86a53-4', 2, 2, '2024-03-02T08:00:04.250Z', 1,
     '{"rows":3,"columns":4,"marks":[[2,2,9],[3,4,-1]]}', NULL, 3, -1, '["4"]', NULL, 0, 0, '[]'),
    (6, '9f2c41d07be6583a1c0d94e7b2f86a53-6-e77a2f40', 1, 3, '2024-03-02T08:00:06.250Z', 1,
     '{"rows":3,"columns":4,"marks":[[1,2,9],[3,4,-1]]}', NULL, 3, -1, '["6"]', NULL, 0, 0, '[]'),
    (7, '9f2c41d07be6583a1c0d94e7b2f86a53-7-41cc8e02', 1, 4, '2024-03-02T08:00:07.250Z', 1,
     '{"rows":3,"columns":4,"marks":[[2,2,9],[3,4,-1]]}', NULL, 3, -1, '["7"]', NULL, 0, 0, '[]'),
    (8, '9f2c41d07be6583a1c0d94e7b2f86a53-8-9d0f6a5b', 2, 3, '2024-03-02T08:00:08.250Z', 1,
     '{"rows":3,"columns":4,"marks":[[3,2,9],[3,4,-1]]}', NULL, 3, -1, '["8"]', NULL, 0, 0, '[]');
INSERT INTO failure VALUES
    (5, '9f2c41d07be6583a1c0d94e7b2f86a53-5-0b3c9d11', 1, 2, '2024-03-02T08:00:05.250Z', 102, 77, 1,
     'The feeder is jammed.', 'basScantron.ReadPageST', 'Read Error');
INSERT INTO held VALUES
    (3, 'Sheet 2 of the batch all of the reader left does not go into the stream: it is too large.'),
    (4, 'Sheet 2 of the batch all of the reader right does not go into the stream: it is too large.');
PRAGMA application_id = 1262832722; -- "KELR"
PRAGMA user_version = 3;
COMMIT;
