package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.bench.Results.Unit;

/** What the library is meant to reach, printed beside what it did reach. */
final class Targets {
    private final Results results;

    Targets(Results results) {
        this.results = results;
        Results.print("%n%-58s %12s   %s%n", "target", "reached", "wanted");
    }

    void ofJdbc(String operation, int records, double target) {
        double share = library(operation, records).median()
                / results.of(operation, Subject.JDBC, records).median();
        atMost(operation + " at " + records + ", of jdbc's", share, target);
    }

    void growth(String operation, int few, int many, double target) {
        double times = library(operation, many).median() / library(operation, few).median();
        atMost(operation + " at " + many + ", of that at " + few, times, target);
    }

    void median(String operation, int records, Unit unit, double target) {
        atMost(operation + ", " + unit.symbol, library(operation, records).median() / unit.size, target);
    }

    void atMost(String what, double reached, double target) {
        print(what, reached, "at most", target, reached <= target);
    }

    void atLeast(String what, double reached, double target) {
        print(what, reached, "at least", target, reached >= target);
    }

    private Samples library(String operation, int records) {
        return results.of(operation, Subject.LIBRARY, records);
    }

    private static void print(String what, double reached, String relation, double target, boolean met) {
        Results.print("%-58s %12.3f   %s %s%s%n", what, reached, relation, target, met ? "" : "   MISSED");
    }
}
