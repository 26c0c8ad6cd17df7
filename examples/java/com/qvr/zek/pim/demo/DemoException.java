package com.qvr.zek.pim.demo;

/** The demonstration cannot go on; the message tells the user why. */
final class DemoException extends Exception {
    private static final long serialVersionUID = 1L;

    DemoException(String message) {
        super(message);
    }
}
