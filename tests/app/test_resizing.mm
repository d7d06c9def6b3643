// SPDX-License-Identifier: MIT
//
// What is in sight when the window changes its size.
#import "console_fixture.h"

#import "ConsoleScrollView.h"

namespace {

class Resizing : public ConsoleTest {
protected:
    void Resize(CGFloat width, CGFloat height) {
        NSRect frame = [window frame];
        frame.size = NSMakeSize(width, height);
        [window setFrame:frame display:YES];
    }

    NSRect PlaceOf(NSUInteger character) {
        NSLayoutManager* const layout = [console layoutManager];
        const NSRange glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1)
                                              actualCharacterRange:NULL];
        NSRect place = [layout boundingRectForGlyphRange:glyphs inTextContainer:[console textContainer]];
        place.origin.x += [console textContainerOrigin].x;
        place.origin.y += [console textContainerOrigin].y;
        return place;
    }

    void ExpectEntryInSight() {
        const NSRect seen = [console visibleRect];
        const NSRect last = PlaceOf([[console string] length] - 1);
        EXPECT_GE(NSMinY(last), NSMinY(seen));
        EXPECT_LE(NSMaxY(last), NSMaxY(seen));
    }

    NSUInteger FirstLineInSight() {
        const NSPoint top =
            NSMakePoint(1, NSMinY([console visibleRect]) - [console textContainerOrigin].y + 1);
        return [[console layoutManager] glyphIndexForPoint:top inTextContainer:[console textContainer]];
    }

    void EnterLines(int count) {
        for (int i = 0; i < count; ++i) Enter(std::to_string(i).c_str());
    }
};

TEST_F(Resizing, ASmallerWindowKeepsItsEntryInSight) {
    Resize(700, 500);
    EnterLines(4);
    Enter("echo a; echo b; echo c");
    Type("12345");
    ExpectEntryInSight();
    Resize(448, 200);
    ExpectEntryInSight();
    EXPECT_EQ("12345", Entry());
}

TEST_F(Resizing, TheEntryStaysInSightThroughManySizes) {
    EnterLines(30);
    Enter(("echo " + std::string(400, 'w')).c_str());
    Type("12345");
    const CGFloat sizes[][2] = {{700, 500}, {448, 200},  {900, 160}, {450, 600},
                                {400, 150}, {1000, 900}, {500, 300}};
    for (const auto& size : sizes) {
        Resize(size[0], size[1]);
        ExpectEntryInSight();
    }
}

TEST_F(Resizing, WhatWasScrolledToStaysWhereItIs) {
    Resize(700, 300);
    for (int i = 0; i < 30; ++i) Enter(("echo " + std::to_string(1000 + i) + std::string(150, 'w')).c_str());
    NSScrollView* const scroll = [console enclosingScrollView];
    const NSUInteger place = Text().find("> echo 1012");
    [console scrollPoint:NSMakePoint(0, NSMinY(PlaceOf(place)))];
    [scroll reflectScrolledClipView:[scroll contentView]];
    ASSERT_EQ(place, FirstLineInSight());
    const CGFloat sizes[][2] = {{700, 200}, {450, 200}, {900, 400}, {500, 500}, {700, 300}};
    for (const auto& size : sizes) {
        Resize(size[0], size[1]);
        EXPECT_EQ(place, FirstLineInSight()) << size[0] << " x " << size[1];
    }
    const CGFloat parts[][2] = {{600, 200}, {450, 150}, {650, 250}};
    for (const auto& size : parts) { // as macOS has views resize
        [scroll setFrameSize:NSMakeSize(size[0], size[1])];
        EXPECT_EQ(place, FirstLineInSight()) << size[0] << " x " << size[1];
    }
}

TEST_F(Resizing, WithoutATextThereIsNothingToKeepInSight) {
    ConsoleScrollView* const alone =
        [[[ConsoleScrollView alloc] initWithFrame:NSMakeRect(0, 0, 100, 80)] autorelease];
    [alone setFrame:NSMakeRect(0, 0, 200, 160)];
    EXPECT_TRUE(NSEqualSizes([alone contentSize], NSMakeSize(200, 160)));
    [console setString:@""];
    Resize(500, 300);
    EXPECT_EQ(NSWidth([console frame]), [[console enclosingScrollView] contentSize].width);
    [console clearConsole];
    Type("7");
    ExpectEntryInSight();
}

} // namespace
