package com.qvr.zek.pim.bench;

import java.util.Arrays;
import java.util.function.DoubleBinaryOperator;

/** What one subject reached in the rounds of a measurement. */
final class Samples {
    private final double[] byRound;
    private final double[] sorted;

    Samples(double... byRound) {
        this.byRound = byRound;
        sorted = byRound.clone();
        Arrays.sort(sorted);
    }

    double median() {
        int middle = sorted.length / 2;
        return sorted.length % 2 == 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
    }

    double minimum() {
        return sorted[0];
    }

    double maximum() {
        return sorted[sorted.length - 1];
    }

    double mean() {
        return Arrays.stream(sorted).average().orElse(Double.NaN);
    }

    /** The share of one, when each operation was {@code parts} of them. */
    Samples dividedBy(int parts) {
        return new Samples(Arrays.stream(byRound).map(cost -> cost / parts).toArray());
    }

    /** Computes with what another subject reached in the same rounds. */
    Samples with(Samples other, DoubleBinaryOperator operator) {
        double[] results = new double[byRound.length];
        for (int round = 0; round < results.length; round++) {
            results[round] = operator.applyAsDouble(byRound[round], other.byRound[round]);
        }
        return new Samples(results);
    }
}
