package com.qvr.zek.pim.demo;

import java.io.File;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.NoSuchFileException;
import java.time.LocalDateTime;
import java.time.ZoneId;
import java.time.format.DateTimeFormatter;
import java.time.format.DateTimeParseException;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * A table of events or to-dos: one row per line, columns separated by tabs, named in the first row. Lines that begin
 * with # are comments. An empty cell holds no value, \n in a cell is a line break, dates are local time written as
 * 2025-03-14 09:30.
 */
final class SampleTable {
    static final DateTimeFormatter DATE = DateTimeFormatter.ofPattern("yyyy-MM-dd HH:mm");

    /** One line; every error names the file and the line. */
    static final class Row {
        private final String where;
        private final List<String> columns;
        private final String[] cells;

        private Row(String where, List<String> columns, String[] cells) {
            this.where = where;
            this.columns = columns;
            this.cells = cells;
        }

        /** The text of a cell, empty when there is none. */
        String text(String column) throws DemoException {
            int position = columns.indexOf(column);
            if (position < 0) {
                throw new DemoException(where + ": the table has no column " + column);
            }
            return position < cells.length ? cells[position].trim().replace("\\n", "\n") : "";
        }

        /** A date in milliseconds, or null when the cell is empty. */
        Long date(String column) throws DemoException {
            String text = text(column);
            try {
                return text.isEmpty() ? null
                        : LocalDateTime.parse(text, DATE).atZone(ZoneId.systemDefault()).toInstant().toEpochMilli();
            } catch (DateTimeParseException e) {
                throw new DemoException(where + ": " + column + " is no date such as 2025-03-14 09:30: " + text);
            }
        }

        /** A whole number, or null when the cell is empty. */
        Integer number(String column) throws DemoException {
            String text = text(column);
            try {
                return text.isEmpty() ? null : Integer.valueOf(text);
            } catch (NumberFormatException e) {
                throw new DemoException(where + ": " + column + " is no whole number: " + text);
            }
        }

        /** The position of a cell's text in {@code words}, or -1 when the cell is empty. */
        int choice(String column, List<String> words) throws DemoException {
            String text = text(column);
            if (!text.isEmpty() && !words.contains(text)) {
                throw new DemoException(where + ": " + column + " is none of " + words + ": " + text);
            }
            return words.indexOf(text);
        }

        String where() {
            return where;
        }
    }

    private SampleTable() {
    }

    static List<Row> read(File file) throws DemoException {
        List<String> lines;
        try {
            lines = Files.readAllLines(file.toPath(), StandardCharsets.UTF_8);
        } catch (NoSuchFileException e) {
            throw new DemoException("there is no file " + file);
        } catch (IOException e) {
            throw new DemoException("cannot read " + file + ": " + e.getMessage());
        }
        List<Row> rows = new ArrayList<>();
        List<String> columns = null;
        for (int number = 1; number <= lines.size(); number++) {
            String line = lines.get(number - 1);
            if (line.isEmpty() || line.startsWith("#")) {
                continue;
            }
            if (columns == null) {
                columns = Arrays.asList(line.split("\t"));
            } else {
                rows.add(new Row(file + ", line " + number, columns, line.split("\t")));
            }
        }
        return rows;
    }
}
