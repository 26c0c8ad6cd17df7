package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.bench.Measurement.Round;
import com.qvr.zek.pim.bench.Results.Unit;
import java.time.LocalDateTime;
import java.time.ZoneOffset;
import java.util.Collections;
import java.util.Map;

/** The date-ordered walk, each of whose steps looks at all to-dos. */
final class ToDoBenchmark {
    private static final int COUNT = SampleToDo.COUNT;

    /** nextSortedToDoN converts one date of each to-do, the one that it goes by. */
    private static final int MKTIMES_PER_TODO = 1;

    private static final int WORDS_OF_A_TIME = 9;

    private final boolean quick;
    private final Results results;
    private final Stores stores;
    private final Floor floor = new Floor();

    ToDoBenchmark(boolean quick, Results results, Stores stores) {
        this.quick = quick;
        this.results = results;
        this.stores = stores;
    }

    void run() throws Exception {
        Map<String, Round> subjects = stores.each(this::steps);
        subjects.put(Subject.LIBC, mktimes());
        Map<String, Samples> samples = new Measurement(quick ? 50 : 200, quick ? 101 : 501).of(subjects);

        Samples mktime = samples.remove(Subject.LIBC).dividedBy(COUNT);
        results.add(Operation.TODO_STEP, COUNT, Unit.MICROSECONDS, samples);
        Samples todo = samples.get(Subject.LIBRARY).dividedBy(COUNT);
        addSingle(Operation.TODO, Subject.LIBRARY, todo);
        addSingle(Operation.MKTIME, Subject.LIBC, mktime);
        addSingle(Operation.TODO_BESIDE_MKTIME, Subject.LIBRARY,
                todo.with(mktime, (all, conversion) -> all - MKTIMES_PER_TODO * conversion));
    }

    private void addSingle(String operation, String subject, Samples samples) {
        results.add(operation, COUNT, Unit.NANOSECONDS, Collections.singletonMap(subject, samples));
    }

    private Round steps(PimStore store) {
        Walk places = new Walk(SampleToDo.DATES - 1, place -> place + 1 == SampleToDo.DATES - 1 ? -1 : place + 1);
        return Measurement.working( () -> {
            int[] found = store.nextToDos(SampleToDo.due(places.next()));
            Benchmark.require(found.length == 2, "two to-dos share each due date");
        });
    }

    /** The conversions of one step, in its order. */
    private Round mktimes() {
        int[] times = new int[WORDS_OF_A_TIME * COUNT];
        long[] seconds = new long[1];
        for (int number = 0; number < COUNT; number++) {
            long due = new SampleToDo(number).due / 1000;
            seconds[0] += due;
            System.arraycopy(brokenDown(due), 0, times, WORDS_OF_A_TIME * number, WORDS_OF_A_TIME);
        }
        return Measurement.working(
                () -> Benchmark.require(floor.mktimesN(times) == seconds[0], "mktime() gives the due dates"));
    }

    private static int[] brokenDown(long seconds) {
        LocalDateTime time = LocalDateTime.ofEpochSecond(seconds, 0, ZoneOffset.UTC);
        return new int[] {time.getSecond(), time.getMinute(), time.getHour(), time.getDayOfMonth(),
            time.getMonthValue() - 1, time.getYear() - 1900, time.getDayOfWeek().getValue() % 7,
            time.getDayOfYear() - 1, 0};
    }
}
