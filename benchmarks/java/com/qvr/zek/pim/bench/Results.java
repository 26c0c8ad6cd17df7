package com.qvr.zek.pim.bench;

import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;

/** What was measured: printed as it comes, and kept for the targets and for a table with tabs between its columns. */
final class Results {
    /** What results are shown in; samples are in nanoseconds or kilobytes. */
    enum Unit {
        NANOSECONDS("ns", 1), MICROSECONDS("us", 1e3), MILLISECONDS("ms", 1e6), KILOBYTES("kB", 1);

        final String symbol;
        final double size;

        Unit(String symbol, double size) {
            this.symbol = symbol;
            this.size = size;
        }
    }

    /** By operation, subject and number of records. */
    private final Map<String, Map<String, Map<Integer, Samples>>> operations = new LinkedHashMap<>();
    private final List<String> lines = new ArrayList<>();

    Results() {
        lines.add("operation\tsubject\trecords\tunit\tmedian\tminimum\tmaximum");
        print("%-24s %7s  %-24s %12s %12s %12s %2s %8s%n", "operation", "records", "subject", "median", "minimum",
                "maximum", "", "of jdbc");
    }

    void add(String operation, int records, Unit unit, Map<String, Samples> subjects) {
        Samples jdbc = subjects.get(Subject.JDBC);
        subjects.forEach((subject, samples) -> {
            operations.computeIfAbsent(operation, name -> new LinkedHashMap<>())
                    .computeIfAbsent(subject, name -> new LinkedHashMap<>()).put(records, samples);
            double median = samples.median() / unit.size;
            double minimum = samples.minimum() / unit.size;
            double maximum = samples.maximum() / unit.size;
            lines.add(String.format(Locale.ROOT, "%s\t%s\t%d\t%s\t%.3f\t%.3f\t%.3f", operation, subject, records,
                    unit.symbol, median, minimum, maximum));
            print("%-24s %7d  %-24s %12.3f %12.3f %12.3f %2s %8s%n", operation, records, subject, median, minimum,
                    maximum, unit.symbol,
                    jdbc == null ? "" : String.format(Locale.ROOT, "%.3f", samples.median() / jdbc.median()));
        });
    }

    Samples of(String operation, String subject, int records) {
        return operations.get(operation).get(subject).get(records);
    }

    /** How each cost grew from {@code few} to {@code many} records: as which power of their number. */
    void printGrowth(int few, int many) {
        print("%n%-24s          %-24s %13s %12s%n", "growth of the cost", "subject", few + " to " + many, "exponent");
        operations.forEach((operation, subjects) -> subjects.forEach((subject, byRecords) -> {
            if (byRecords.containsKey(few) && byRecords.containsKey(many)) {
                double growth = byRecords.get(many).median() / byRecords.get(few).median();
                print("%-24s          %-24s %12.2fx %12.2f%n", operation, subject, growth,
                        Math.log(growth) / Math.log((double) many / few));
            }
        }));
    }

    /** To standard error: on standard output the library has its own to say. */
    static void print(String format, Object... values) {
        System.err.printf(Locale.ROOT, format, values);
    }

    void write(Path file) throws IOException {
        Files.write(file, lines);
    }
}
