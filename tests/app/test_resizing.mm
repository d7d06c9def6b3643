// SPDX-License-Identifier: MIT
//
// What is in sight when the window changes its size.
#import "console_fixture.h"

namespace {

class Resizing : public ConsoleTest {
protected:
    void resize(CGFloat width, CGFloat height) {
        NSRect frame = [window frame];
        frame.size = NSMakeSize(width, height);
        [window setFrame:frame display:YES];
    }

    NSRect placeOf(NSUInteger character) {
        NSLayoutManager* const layout = [console layoutManager];
        const NSRange glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                              actualCharacterRange:NULL];
        NSRect place = [layout boundingRectForGlyphRange:glyphs inTextContainer:[console textContainer]];
        place.origin.x += [console textContainerOrigin].x;
        place.origin.y += [console textContainerOrigin].y;
        return place;
    }

    void expectEntryInSight() {
        const NSRect seen = [console visibleRect];
        const NSRect last = placeOf([[console string] length] - 1);
        EXPECT_GE(NSMinY(last), NSMinY(seen));
        EXPECT_LE(NSMaxY(last), NSMaxY(seen));
    }

    NSUInteger firstLineInSight() {
        const NSPoint top =
            NSMakePoint(1, NSMinY([console visibleRect]) - [console textContainerOrigin].y + 1);
        return [[console layoutManager] glyphIndexForPoint:top inTextContainer:[console textContainer]];
    }

    void enterLines(int count) {
        for (int i = 0; i < count; i++) enter(std::to_string(i).c_str());
    }
};

TEST_F(Resizing, aSmallerWindowKeepsItsEntryInSight) {
    resize(700, 500);
    enterLines(4);
    enter("echo a; echo b; echo c");
    type("12345");
    expectEntryInSight();
    resize(448, 200);
    expectEntryInSight();
    EXPECT_EQ("12345", entry());
}

TEST_F(Resizing, theEntryStaysInSightThroughManySizes) {
    enterLines(30);
    enter(("echo " + std::string(400, 'w')).c_str());
    type("12345");
    const CGFloat sizes[][2] = {{700, 500}, {448, 200},  {900, 160}, {450, 600},
                                {400, 150}, {1000, 900}, {500, 300}};
    for (const auto& size : sizes) {
        resize(size[0], size[1]);
        expectEntryInSight();
    }
}

TEST_F(Resizing, whatWasScrolledToStaysWhereItIs) {
    resize(700, 300);
    for (int i = 0; i < 30; i++) enter(("echo " + std::to_string(1000 + i) + std::string(150, 'w')).c_str());
    NSScrollView* const scroll = [console enclosingScrollView];
    const NSUInteger place = text().find("> echo 1012");
    [console scrollPoint:NSMakePoint(0, NSMinY(placeOf(place)))];
    [scroll reflectScrolledClipView:[scroll contentView]];
    ASSERT_EQ(place, firstLineInSight());
    const CGFloat sizes[][2] = {{700, 200}, {450, 200}, {900, 400}, {500, 500}, {700, 300}};
    for (const auto& size : sizes) {
        resize(size[0], size[1]);
        EXPECT_EQ(place, firstLineInSight()) << size[0] << " x " << size[1];
    }
}

} // namespace
