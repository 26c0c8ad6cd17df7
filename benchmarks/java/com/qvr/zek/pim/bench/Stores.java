package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.bench.Measurement.Round;
import java.util.LinkedHashMap;
import java.util.Map;

/** The library's store and the copy of it that is worked on by hand. */
final class Stores {
    /** Makes what is measured of one store. */
    interface RoundMaker {
        Round on(PimStore store);
    }

    final LibraryStore library;
    final JdbcStore jdbc;

    Stores(LibraryStore library, JdbcStore jdbc) {
        this.library = library;
        this.jdbc = jdbc;
    }

    Map<String, Round> each(RoundMaker maker) {
        Map<String, Round> subjects = new LinkedHashMap<>();
        subjects.put(Subject.LIBRARY, maker.on(library));
        subjects.put(Subject.JDBC, maker.on(jdbc));
        return subjects;
    }
}
