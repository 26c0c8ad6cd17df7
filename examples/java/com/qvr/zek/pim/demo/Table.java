package com.qvr.zek.pim.demo;

import com.ibm.icu.lang.UCharacter;
import com.ibm.icu.lang.UProperty;
import com.ibm.icu.text.BreakIterator;
import java.io.PrintStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;

/** Rows under fixed-width columns; a cell holds any number of lines and folds those that are too wide. */
final class Table {
    private static final String GAP = "  ";

    private final PrintStream out;
    private final String[] titles;
    private final int[] widths;

    /** Columns are given as title and width in terminal cells, in turn. */
    Table(PrintStream out, Object... columns) {
        this.out = out;
        titles = new String[columns.length / 2];
        widths = new int[columns.length / 2];
        for (int i = 0; i < titles.length; i++) {
            titles[i] = (String) columns[2 * i];
            widths[i] = (Integer) columns[2 * i + 1];
        }
        List<List<String>> heading = new ArrayList<>();
        List<List<String>> rule = new ArrayList<>();
        for (int i = 0; i < titles.length; i++) {
            heading.add(Collections.singletonList(titles[i]));
            rule.add(Collections.singletonList(String.join("", Collections.nCopies(widths[i], "-"))));
        }
        print(heading);
        print(rule);
    }

    /** Prints a row; a cell is a text, a number, a list of lines or null. */
    void row(Object... cells) {
        List<List<String>> folded = new ArrayList<>();
        for (int i = 0; i < cells.length; i++) {
            List<String> lines = new ArrayList<>();
            for (Object line : cells[i] instanceof List ? (List<?>) cells[i] : Collections.singletonList(cells[i])) {
                String text = line == null ? "" : line.toString();
                for (String part : text.split("\\R")) {
                    fold(part, widths[i], lines);
                }
            }
            folded.add(lines);
        }
        print(folded);
    }

    private void print(List<List<String>> cells) {
        int height = cells.stream().mapToInt(List::size).max().orElse(0);
        for (int line = 0; line < height; line++) {
            StringBuilder text = new StringBuilder();
            for (int i = 0; i < cells.size(); i++) {
                String part = line < cells.get(i).size() ? cells.get(i).get(line) : "";
                text.append(part).append(blanks(widths[i] - width(part))).append(GAP);
            }
            out.println(text.toString().replaceFirst("\\s+$", ""));
        }
    }

    /** Breaks {@code text} into lines of at most {@code width} cells, between words or, in long ones, characters. */
    private static void fold(String text, int width, List<String> lines) {
        String rest = text;
        while (width(rest) > width) {
            int cut = lastBreak(BreakIterator.getLineInstance(), rest, width);
            if (cut == 0) {
                cut = Math.max(lastBreak(BreakIterator.getCharacterInstance(), rest, width), 1);
            }
            lines.add(rest.substring(0, cut).replaceFirst("\\s+$", ""));
            rest = rest.substring(cut);
        }
        lines.add(rest);
    }

    /** The last place in {@code text} where {@code breaks} allows a line of at most {@code width} cells to end. */
    private static int lastBreak(BreakIterator breaks, String text, int width) {
        breaks.setText(text);
        int last = 0;
        for (int end = breaks.next(); end != BreakIterator.DONE; end = breaks.next()) {
            if (width(text.substring(0, end).replaceFirst("\\s+$", "")) > width) {
                break;
            }
            last = end;
        }
        return last;
    }

    /** The cells that a terminal gives a text: two for wide characters, none for combining and invisible ones. */
    static int width(String text) {
        return text.codePoints().map(Table::width).sum();
    }

    private static int width(int character) {
        switch (UCharacter.getType(character)) {
        case Character.NON_SPACING_MARK:
        case Character.ENCLOSING_MARK:
        case Character.FORMAT:
        case Character.CONTROL:
            return 0;
        default:
            int eastAsian = UCharacter.getIntPropertyValue(character, UProperty.EAST_ASIAN_WIDTH);
            return eastAsian == UCharacter.EastAsianWidth.WIDE || eastAsian == UCharacter.EastAsianWidth.FULLWIDTH
                    ? 2 : 1;
        }
    }

    private static String blanks(int count) {
        char[] blanks = new char[Math.max(count, 0)];
        Arrays.fill(blanks, ' ');
        return new String(blanks);
    }
}
