// SPDX-License-Identifier: MIT
//
// Keys that were typed before a question could be read.
#import "console_fixture.h"
#import "replacement.h"

#include <deque>

@interface MainConsole (Reading)
- (void)ignoreKeys;
@end

namespace {

constexpr NSTimeInterval READING_TIME = 0.7; // as the guide says

std::deque<NSEvent*> waiting;  // for the question
NSMutableArray* ends = nil;    // until when it was waited for each of them
std::vector<NSEventType> sent; // on to the question

id nextEvent(id, SEL, NSUInteger, NSDate* end, NSString*, BOOL) {
    [ends addObject:end];
    if (waiting.empty()) return nil;
    NSEvent* const next = waiting.front();
    waiting.pop_front();
    return next;
}

void sendEvent(id, SEL, NSEvent* event) {
    sent.push_back([event type]);
}

class Questions : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        ends = [NSMutableArray array];
        waiting.clear();
        sent.clear();
    }

    // A question appears while these events come, and then none.
    void Ask(const std::deque<NSEvent*>& events) {
        waiting = events;
        const Replaced next([NSApplication class], @selector(nextEventMatchingMask:untilDate:inMode:dequeue:),
                            nextEvent);
        const Replaced send([NSApplication class], @selector(sendEvent:), sendEvent);
        before = [NSDate timeIntervalSinceReferenceDate];
        [console ignoreKeys];
        after = [NSDate timeIntervalSinceReferenceDate];
    }

    NSEvent* Key() const {
        return [NSEvent keyEventWithType:NSKeyDown
                                location:NSZeroPoint
                           modifierFlags:0
                               timestamp:0
                            windowNumber:[window windowNumber]
                                 context:nil
                              characters:@"\r"
             charactersIgnoringModifiers:@"\r"
                               isARepeat:NO
                                 keyCode:0];
    }

    NSEvent* Mouse(NSEventType type) const {
        return [NSEvent mouseEventWithType:type
                                  location:NSZeroPoint
                             modifierFlags:0
                                 timestamp:0
                              windowNumber:[window windowNumber]
                                   context:nil
                               eventNumber:0
                                clickCount:1
                                  pressure:0];
    }

    NSTimeInterval before = 0, after = 0;
};

TEST_F(Questions, TakeNoKeyForSevenTenthsOfASecond) {
    Ask({Key(), Key()});
    EXPECT_TRUE(sent.empty());
    ASSERT_EQ([ends count], 3U) << "up to the end, at which there is no event";
    for (NSDate* const end in ends) {
        EXPECT_GE([end timeIntervalSinceReferenceDate], before + READING_TIME);
        EXPECT_LE([end timeIntervalSinceReferenceDate], after + READING_TIME) << "no key makes it longer";
        EXPECT_TRUE([end isEqual:[ends objectAtIndex:0]]);
    }
}

TEST_F(Questions, TakeClicksAtOnce) {
    Ask({Mouse(NSLeftMouseDown), Key(), Mouse(NSLeftMouseUp), Key()});
    EXPECT_EQ(sent, std::vector<NSEventType>({NSLeftMouseDown, NSLeftMouseUp}));
    EXPECT_EQ(waiting.size(), 1U) << "the click may have answered: what follows is not the question's";
}

} // namespace
