// SPDX-License-Identifier: MIT
//
// Another implementation of a method for as long as this lives. For a class method give metaclassOf(type).
#pragma once

#import <Foundation/Foundation.h>
#import <objc/runtime.h>

inline Class metaclassOf(Class type) {
    return object_getClass(reinterpret_cast<id>(type));
}

class Replaced {
public:
    template <typename Function>
    Replaced(Class type, SEL selector, Function* replacement)
        : method(class_getInstanceMethod(type, selector)),
          original(method_setImplementation(method, reinterpret_cast<IMP>(replacement))) {}
    ~Replaced() { method_setImplementation(method, original); }
    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

    IMP implementation() const { return original; } // what it replaces

private:
    Method method;
    IMP original;
};
