package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.bench.Measurement.Round;
import com.qvr.zek.pim.bench.Results.Unit;
import java.util.Map;

/** What is done with stored contacts: the same through the library and by hand. */
final class ContactBenchmark {
    private static final String CATEGORY = SampleContact.CATEGORIES[0];
    private static final String ABSENT_TEXT = "no contact says this";

    private interface FieldReader {
        Object[] fields(int recindex) throws Exception;
    }

    private final boolean quick;
    private final Results results;
    private final Stores stores;
    private final int contacts;
    private final Measurement reading;
    private final Floor floor = new Floor();

    ContactBenchmark(boolean quick, Results results, Stores stores, int contacts) {
        this.quick = quick;
        this.results = results;
        this.stores = stores;
        this.contacts = contacts;
        reading = quick ? new Measurement(50, 50) : new Measurement(200, 300);
    }

    void run() throws Exception {
        measureFieldReads();
        measureWalkSteps();
        measureWalksAndReads();
        measureCategorySteps();
        measureSearches();
        measureChanges();
    }

    private void measureFieldReads() throws Exception {
        Map<String, Round> subjects = stores.each(store -> {
            Walk recindexes = new Walk(contacts, recindex -> recindex == contacts ? -1 : Math.max(recindex, 0) + 1);
            return Measurement.working(
                    () -> Benchmark.require(!store.email(recindexes.next()).isEmpty(), "contacts have an address"));
        });
        subjects.put(Subject.EMPTY, emptyCalls());
        results.add(Operation.FIELD_READ, contacts, Unit.MICROSECONDS, reading.of(subjects));
    }

    private void measureWalkSteps() throws Exception {
        Map<String, Round> subjects = stores.each(store -> Measurement.working(new Walk(contacts, store::next)::next));
        subjects.put(Subject.EMPTY, emptyCalls());
        results.add(Operation.WALK_STEP, contacts, Unit.MICROSECONDS, reading.of(subjects));
    }

    private Round emptyCalls() {
        return Measurement.working(() -> Benchmark.require(floor.emptyN(0, 0, contacts) == contacts, "calls answer"));
    }

    private void measureWalksAndReads() throws Exception {
        Map<String, Round> subjects = stores.each(store -> walkAndRead(store, store::fields));
        subjects.put(Subject.JDBC_AT_ONCE, walkAndRead(stores.jdbc, stores.jdbc::fieldsAtOnce));
        results.add(Operation.WALK_AND_READ, contacts, Unit.MICROSECONDS, reading.of(subjects));
    }

    /** An operation is one contact: the step to it, and its fields. */
    private Round walkAndRead(PimStore store, FieldReader reader) {
        Walk walk = new Walk(contacts, store::next);
        return Measurement.working(
                () -> Benchmark.require(reader.fields(walk.next()).length == 11, "a contact has 11 fields"));
    }

    private void measureCategorySteps() throws Exception {
        int members = contacts / SampleContact.CATEGORIES.length;
        results.add(Operation.CATEGORY_STEP, contacts, Unit.MICROSECONDS, reading.of(stores.each(store ->
                Measurement.working(
                        new Walk(members, recindex -> store.nextInCategory(recindex, CATEGORY))::next))));
    }

    /** A search without a match looks at every contact; the operation is one of them. */
    private void measureSearches() throws Exception {
        Map<String, Samples> samples = new Measurement(quick ? 3 : 10, quick ? 11 : 51).of(stores.each(store ->
                Measurement.working(
                        () -> Benchmark.require(store.search(ABSENT_TEXT) == -1, "no contact is found"))));
        samples.replaceAll((subject, searches) -> searches.dividedBy(contacts));
        results.add(Operation.SEARCH, contacts, Unit.MICROSECONDS, samples);
    }

    private void measureChanges() throws Exception {
        Measurement measurement = quick ? new Measurement(5, 25) : new Measurement(20, 200);
        results.add(Operation.CHANGE, contacts, Unit.MICROSECONDS, measurement.of(stores.each(store -> {
            Walk walk = new Walk(contacts, store::next);
            return Measurement.waiting(1, () -> {
                int recindex = walk.next();
                store.update(recindex, SampleContact.at(recindex));
            });
        })));
    }
}
