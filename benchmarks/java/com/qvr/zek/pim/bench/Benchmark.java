package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.bench.Measurement.Round;
import com.qvr.zek.pim.bench.Results.Unit;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.Map;

/**
 * What the library costs a Java program, beside the same work done by other means:
 *
 * <pre>Benchmark [--quick] &lt;results.tsv&gt;</pre>
 *
 * {@code JSR75_PIM_HOME} names a folder that is not there yet; the files of the other subjects are made beside it.
 * The time zone has to be UTC. Results and targets are printed to standard error; a target missed is no failure.
 */
public final class Benchmark {
    private final boolean quick;
    private final int[] sizes;
    private final Results results = new Results();
    private final Path home = Paths.get(System.getenv("JSR75_PIM_HOME")).toAbsolutePath();
    private final LibraryStore library = new LibraryStore();

    private Benchmark(boolean quick) {
        this.quick = quick;
        sizes = quick ? new int[] {1000, 10_000} : new int[] {1000, 3000, 10_000};
    }

    public static void main(String[] arguments) throws Exception {
        boolean quick = arguments.length == 2 && arguments[0].equals("--quick");
        if (!quick && arguments.length != 1) {
            throw new IllegalArgumentException("arguments are [--quick] results.tsv");
        }
        Benchmark benchmark = new Benchmark(quick);
        benchmark.run();
        benchmark.results.write(Paths.get(arguments[arguments.length - 1]));
    }

    static void require(boolean condition, String what) {
        if (!condition) {
            throw new IllegalStateException("not so: " + what);
        }
    }

    private void run() throws Exception {
        library.prepare();
        CommitBenchmark commits = new CommitBenchmark(quick);
        try (JdbcStore jdbc = new JdbcStore(copyOfStore("jdbc-commits"))) {
            Stores stores = new Stores(library, jdbc);
            commits.run(results, stores, Files.createDirectory(home.resolveSibling("vcards")));
            requireContacts(stores, commits.contactsWithWarmUp());
        }
        try (JdbcStore original = new JdbcStore(home)) {
            original.addToDos();
        }
        for (int contacts : sizes) {
            fillContacts(contacts);
            try (JdbcStore jdbc = new JdbcStore(copyOfStore("jdbc-" + contacts))) {
                Stores stores = new Stores(library, jdbc);
                requireContacts(stores, contacts);
                new ContactBenchmark(quick, results, stores, contacts).run();
                if (contacts == most()) {
                    new ToDoBenchmark(quick, results, stores).run();
                }
            }
        }
        measureFreshJvms();
        results.printGrowth(fewest(), most());
        printTargets(commits.contacts());
    }

    private int fewest() {
        return sizes[0];
    }

    private int most() {
        return sizes[sizes.length - 1];
    }

    /** A folder beside the library's store, with a copy of the store. */
    private Path copyOfStore(String name) throws Exception {
        Path folder = Files.createDirectory(home.resolveSibling(name));
        try (JdbcStore original = new JdbcStore(home)) {
            original.copyTo(folder);
        }
        return folder;
    }

    /** By hand and at once what the library would write one by one, waiting for the disk each time. */
    private void fillContacts(int count) throws Exception {
        try (JdbcStore original = new JdbcStore(home)) {
            original.setContacts(count);
        }
    }

    /** Every field that is going to be read, so that no time is one of reading something else. */
    private static void requireContacts(Stores stores, int count) throws Exception {
        for (PimStore store : Arrays.asList(stores.library, stores.jdbc)) {
            Walk walk = new Walk(count, store::next);
            for (int number = 0; number < count; number++) {
                SampleContact expected = new SampleContact(number);
                int recindex = walk.next();
                require(recindex == expected.recindex(), "contacts stand in order");
                require(Arrays.deepEquals(store.fields(recindex), expected.fields()), "fields are those committed");
            }
            require(walk.next() == new SampleContact(0).recindex(), "the walk ends");
        }
        require(Arrays.deepEquals(stores.jdbc.fieldsAtOnce(1), SampleContact.at(1).fields()), "all fields at once");
    }

    private void measureFreshJvms() throws Exception {
        Map<String, Round> starts = new LinkedHashMap<>();
        for (String subject : Arrays.asList(Subject.LIBRARY, Subject.JDBC)) {
            starts.put(subject, ColdStart.of(subject, copyOfStore("cold-start-" + subject)));
        }
        results.add(Operation.COLD_START, most(), Unit.MILLISECONDS, new Measurement(1, quick ? 5 : 15).of(starts));

        Samples growth = ResidentGrowth.in(copyOfStore("resident-growth"));
        results.add(Operation.RESIDENT_GROWTH, most(), Unit.KILOBYTES,
                Collections.singletonMap(Subject.LIBRARY, growth));
    }

    private void printTargets(int commits) {
        Targets targets = new Targets(results);
        targets.atLeast("rate of durable commits, in those of vcard",
                results.of(Operation.COMMIT, Subject.VCARD, commits).mean()
                        / results.of(Operation.COMMIT, Subject.LIBRARY, commits).mean(), 1.5);
        for (int contacts : sizes) {
            targets.ofJdbc(Operation.FIELD_READ, contacts, 0.15);
        }
        targets.ofJdbc(Operation.WALK_AND_READ, fewest(), 0.15);
        targets.ofJdbc(Operation.WALK_AND_READ, most(), 0.3);
        for (int contacts : sizes) {
            targets.ofJdbc(Operation.CATEGORY_STEP, contacts, 1);
        }
        targets.growth(Operation.WALK_STEP, fewest(), most(), 3);
        targets.growth(Operation.FIELD_READ, fewest(), most(), 3);
        targets.median(Operation.TODO_BESIDE_MKTIME, SampleToDo.COUNT, Unit.NANOSECONDS, 100);
        targets.median(Operation.COLD_START, most(), Unit.MILLISECONDS, 20);
        targets.median(Operation.RESIDENT_GROWTH, most(), Unit.KILOBYTES, 0);
    }
}
