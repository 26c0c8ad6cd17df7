package com.qvr.zek.pim.demo;

import java.time.Instant;
import java.time.ZoneId;
import java.time.format.DateTimeFormatter;

/** Dates as people of the machine's time zone read them. */
final class Dates {
    private static final DateTimeFormatter DAY = DateTimeFormatter.ofPattern("yyyy-MM-dd");

    private Dates() {
    }

    static String day(Long milliseconds) {
        return format(milliseconds, DAY);
    }

    static String minute(Long milliseconds) {
        return format(milliseconds, SampleTable.DATE);
    }

    private static String format(Long milliseconds, DateTimeFormatter format) {
        return milliseconds == null ? ""
                : format.format(Instant.ofEpochMilli(milliseconds).atZone(ZoneId.systemDefault()));
    }
}
