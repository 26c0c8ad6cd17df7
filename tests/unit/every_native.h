// every_native.h: all native methods, each with arguments that take it through everything it does on stores that hold
// something of everything. For tests that make each step of each of them fail.
#ifndef JSR75_PIM_TESTS_EVERY_NATIVE_H
#define JSR75_PIM_TESTS_EVERY_NATIVE_H

#include <functional>
#include <string>
#include <vector>

#include "fake_jni.h"
#include "fake_platform.h"

struct native_case {
    std::string native;                         // For instance "PIMItemImpl.getDateN".
    std::string when;                           // What sets it apart from others of the same native; may be empty.
    std::function<std::string(fake_jni&)> call; // The result as a text: 7, "text", [1, 2], null, void.
    std::string name() const { return when.empty() ? native : native + ", " + when; }
};

const std::vector<native_case>& every_native();

// The stores that the cases work on: contacts 1 to 3, of which 1 and 2 are in "Work" and 1 has a value for every field;
// events 1 and 2, to-dos 3 and 4.
void fill_stores(fake_platform& platform);

#endif
