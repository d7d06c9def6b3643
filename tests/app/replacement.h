// SPDX-License-Identifier: MIT
//
// Another implementation of a method for as long as this lives. For a class method give metaclassOf(type).
#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

#include <string>

inline Class metaclassOf(Class type) {
    return object_getClass(reinterpret_cast<id>(type));
}

class Replaced {
public:
    template <typename Function>
    Replaced(Class type, SEL selector, Function* replacement)
        : method(class_getInstanceMethod(type, selector)),
          original(method_setImplementation(method, reinterpret_cast<IMP>(replacement))), owner(type) {
        TellSubclasses();
    }
    ~Replaced() {
        method_setImplementation(method, original);
        TellSubclasses();
    }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

    IMP Implementation() const { return original; } // what it replaces

private:
    // The runtime of GNUstep changes the table of the class alone, and that of a subclass may be a copy. A
    // method that is added has all of them made anew; it has to be a new one every time.
    void TellSubclasses() const {
        static int count = 0;
        const std::string name = "replacement" + std::to_string(++count);
        class_addMethod(owner, sel_registerName(name.c_str()), original, method_getTypeEncoding(method));
    }

    Method method;
    IMP original;
    Class owner;
};
