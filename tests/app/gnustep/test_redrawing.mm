// SPDX-License-Identifier: MIT
//
// A change of the text draws what has changed, and no more.
#import "../console_fixture.h"
#import "../replacement.h"

#include <functional>

namespace {

CGFloat scale = 1;

CGFloat scaleOfScreen(id, SEL) {
    return scale;
}

NSRect drawn;

void noteDrawing(id, SEL, NSRect dirty) {
    drawn = NSUnionRect(drawn, dirty);
}

// It blinks, and may between two pictures.
void drawNoCursor(id, SEL, NSRect, NSColor*, BOOL) {}

class Redrawing : public ConsoleTest {
protected:
    void TearDown() override {
        scale = 1;
        ConsoleTest::TearDown();
    }

    void FillConsole() {
        for (int i = 0; i < 40; ++i) [console insertWithNewPrompt:"ans = 7\n"];
    }

    void Update() {
        Run(0.01);
        [window displayIfNeeded];
    }

    std::string Pixels() const {
        NSView* const content = [window contentView];
        [content lockFocus];
        NSBitmapImageRep* const bits =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[content bounds]] autorelease];
        [content unlockFocus];
        const auto size = static_cast<size_t>([bits bytesPerRow] * [bits pixelsHigh]);
        return std::string(reinterpret_cast<const char*>([bits bitmapData]), size);
    }

    // What the change leaves is what is seen when everything is drawn again.
    void ExpectAllIsDrawn(const char* what, const std::function<void()>& change) {
        change();
        Update();
        const std::string changed = Pixels();
        [window display];
        EXPECT_TRUE(changed == Pixels()) << what << " at " << scale;
    }

    const Replaced ofScreen { [NSScreen class], @selector(userSpaceScaleFactor), scaleOfScreen };
};

TEST_F(Redrawing, AKeyPressDrawsItsLine) {
    FillConsole();
    Type("12");
    Update();
    const Replaced drawing([MainConsole class], @selector(drawRect:), noteDrawing);
    drawn = NSZeroRect;
    Type("3");
    Update();
    const CGFloat line = NSHeight([[console layoutManager] lineFragmentRectForGlyphAtIndex:0
                                                                            effectiveRange:NULL]);
    EXPECT_GE(NSHeight(drawn), line);
    EXPECT_LE(NSHeight(drawn), 2 * line);
}

TEST_F(Redrawing, NothingIsMissing) {
    const Replaced cursor([MainConsole class], @selector(drawInsertionPointInRect:color:turnedOn:),
                          drawNoCursor);
    for (const CGFloat each : {1.0, 1.5, 2.0}) {
        scale = each;
        Restart();
        [window display];
        ExpectAllIsDrawn("the first key", [this] { Type("("); });
        ExpectAllIsDrawn("a bracket", [this] { Type("1)"); });
        ExpectAllIsDrawn("an answer", [this] { Press(KEY_RETURN); });
        ExpectAllIsDrawn("an error", [this] { Enter("2+nothing"); });
        ExpectAllIsDrawn("more than fits", [this] { FillConsole(); });
        ExpectAllIsDrawn("a long entry", [this] { Type(std::string(100, '7').c_str()); });
        ExpectAllIsDrawn("its first line", [this] {
            SelectEntry(3);
            Type("*");
        });
        ExpectAllIsDrawn("below what is seen", [this] {
            [console scrollPoint:NSZeroPoint];
            [console replaceCharactersInRange:NSMakeRange([[console string] length], 0) withString:@"+1"];
        });
        ExpectAllIsDrawn("one character less", [this] { Press(KEY_BACKSPACE); });
        ExpectAllIsDrawn("none any more", [this] { [console clearPrompt]; });
        ExpectAllIsDrawn("two changes", [this] {
            Type("5");
            [console insertPrePrompt:"in front of it\n":3];
        });
        ExpectAllIsDrawn("another font", [this] { [console makeTextBigger:nil]; });
        ExpectAllIsDrawn("New", [this] { [console newDocument:nil]; });
    }
}

} // namespace
