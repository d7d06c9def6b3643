// SPDX-License-Identifier: MIT
//
// The one way back from an entry that is interrupted.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

// While an entry runs, whatever changes something that stays after the entry hands over a step that takes the
// change back. Steps run in the reverse order, so that each finds things as its change left them. What a step
// needs for that, such as a deleted function, lives in the step.
class Undo {
public:
    using Step = std::function<void()>;

    // From now on steps are kept, until End.
    void Begin() { isOpen = true; }

    template <class Function> void Add(Function&& step) {
        if (isOpen) steps.emplace_back(std::forward<Function>(step));
    }

    bool IsKept() const { return isOpen; } // whether Add would keep a step

    // Has TakeBack put back what the place holds now.
    template <class T> void Keep(T& place) {
        static_assert(!std::is_array_v<T>);
        if (isOpen) Add([&place, value = place] { place = value; });
    }

    // The same for a buffer with a text.
    template <size_t SIZE> void Keep(char (&buffer)[SIZE]) {
        if (isOpen)
            Add([&buffer, text = std::string(buffer)] { buffer[text.copy(buffer, SIZE - 1)] = '\0'; });
    }

    // Takes all changes back.
    void TakeBack() {
        isOpen = false;
        for (; !steps.empty(); steps.pop_back()) steps.back()();
    }

    // Forgets the steps: the changes stay.
    void End() {
        isOpen = false;
        steps.clear();
    }

private:
    std::vector<Step> steps;
    bool isOpen = false;
};
