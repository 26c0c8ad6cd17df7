package com.qvr.zek.pim;

/** Loads the native half once; every class with native methods asks for it in its static initialiser. */
final class NativeLibrary {
    static {
        System.loadLibrary("jsr75pim");
    }

    private NativeLibrary() {
    }

    /** Runs the static initialiser above on the first call and does nothing afterwards. */
    static void load() {
    }
}
