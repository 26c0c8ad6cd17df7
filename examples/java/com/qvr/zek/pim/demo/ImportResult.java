package com.qvr.zek.pim.demo;

import java.util.ArrayList;
import java.util.List;

/** What became of the entries of one file. */
final class ImportResult {
    int added;
    int alreadyStored;
    /** One line per entry that could not be taken, saying which and why. */
    final List<String> refused = new ArrayList<>();
    /** One line per value that had to be left out of an entry that was taken. */
    final List<String> leftOut = new ArrayList<>();
}
