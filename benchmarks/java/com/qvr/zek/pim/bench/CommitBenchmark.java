package com.qvr.zek.pim.bench;

import com.qvr.zek.pim.bench.Measurement.Round;
import com.qvr.zek.pim.bench.Results.Unit;
import java.nio.file.Path;
import java.util.Map;

/** New contacts, stored one by one, each of them on the disk before the next. */
final class CommitBenchmark {
    private static final int WARM_UPS = 1;

    private interface Commit {
        void make(SampleContact contact) throws Exception;
    }

    private final int rounds;
    private final int contactsOfARound;

    CommitBenchmark(boolean quick) {
        rounds = quick ? 10 : 20;
        contactsOfARound = quick ? 10 : 50;
    }

    /** What counts; each store holds a few more from warming up. */
    int contacts() {
        return rounds * contactsOfARound;
    }

    int contactsWithWarmUp() {
        return (WARM_UPS + rounds) * contactsOfARound;
    }

    void run(Results results, Stores stores, Path vcardFolder) throws Exception {
        try (VcardFolder vcards = new VcardFolder(vcardFolder)) {
            Map<String, Round> subjects = stores.each(store -> commits(store::add));
            subjects.put(Subject.VCARD, commits(vcards::add));
            results.add(Operation.COMMIT, contacts(), Unit.MICROSECONDS,
                    new Measurement(WARM_UPS, rounds).of(subjects));
        }
    }

    private Round commits(Commit commit) {
        int[] next = {0};
        return Measurement.waiting(contactsOfARound, () -> commit.make(new SampleContact(next[0]++)));
    }
}
