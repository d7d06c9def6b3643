// SPDX-License-Identifier: MIT
//
// The colors of the console, the shades of what is written there, and the bracket that is marked.
#import "MainConsole.h"

#import "Controls.h"
#import "Platform.h"

#include "Brackets.h"
#include "Shades.h"

#include <cmath>

static const CGFloat STATUS_TEXT_SIZE = 12;

// The attribute of text that was not typed: its kind. The color follows from it.
static NSString* const KIND = @"TallyquillKind";

static Shade shadeOf(NSColor* color) {
    NSColor* const rgb = [color colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
    return {[rgb redComponent], [rgb greenComponent], [rgb blueComponent]};
}

static NSColor* colorOf(const Shade& shade) {
    return [NSColor colorWithCalibratedRed:shade.red green:shade.green blue:shade.blue alpha:1];
}

@implementation MainConsole (Looks)

// --- Colors ---

- (NSColor*)textColor {
    return textColor ? textColor : [super textColor];
}

// The superclass gives all of the text that color.
- (void)setTextColor:(NSColor*)color {
    [super setTextColor:color];
    [textColor autorelease];
    textColor = [color retain];
    [self showKinds];
}

- (void)showTextColor:(NSColor*)text background:(NSColor*)back {
    if (back) [self setBackgroundColor:back];
    if (text) [self setTextColor:text];
    if (text) [self setInsertionPointColor:text];
    if (back) platformUseLook(isLight(shadeOf(back)));
    [[[self window] contentView] setNeedsDisplay:YES]; // the air around the text too
    if (!back || !text) return;
    NSColor* const gray = [text colorUsingColorSpaceName:NSCalibratedWhiteColorSpace];
    NSColor* const selected = [gray blendedColorWithFraction:0.7 ofColor:back];
    if (!selected) return;
    [self setSelectedTextAttributes:@{
        NSBackgroundColorAttributeName : selected,
        NSForegroundColorAttributeName : colorOf(legible(shadeOf(text), shadeOf(selected)))
    }];
}

// --- The font ---

// Lines break between any two characters: an entry without blanks begins beside its prompt. They are equally
// high, empty ones and those with signs of another font too.
static NSParagraphStyle* linesOf(NSFont* font) {
    NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [style setLineBreakMode:NSLineBreakByCharWrapping];
    const CGFloat height = std::ceil([font ascender] - [font descender]);
    [style setMinimumLineHeight:height];
    [style setMaximumLineHeight:height];
    return style;
}

- (void)setFont:(NSFont*)font {
    [super setFont:font];
    NSParagraphStyle* const lines = linesOf(font);
    [self setDefaultParagraphStyle:lines];
    NSMutableDictionary* const typing = [[[self typingAttributes] mutableCopy] autorelease];
    // In a fixed width "fl" takes two places and not one.
    NSDictionary* const look = @{NSParagraphStyleAttributeName : lines, NSLigatureAttributeName : @0};
    [typing addEntriesFromDictionary:look];
    [self setTypingAttributes:typing];
    NSTextStorage* const storage = [self textStorage];
    [storage addAttributes:look range:NSMakeRange(0, [storage length])];
    [[self enclosingScrollView] tile];
    [answerStatus setFont:[NSFont fontWithName:[font fontName] size:STATUS_TEXT_SIZE]];
}

// --- Shades ---

- (TextShades)shades {
    return textShades(shadeOf([self textColor]), shadeOf([self backgroundColor]));
}

static NSColor* colorOf(TextKind kind, const TextShades& shades) {
    return colorOf(kind == TextKind::Error ? shades.error : shades.answer);
}

- (NSDictionary*)lookOf:(TextKind)kind {
    if (kind == TextKind::Typed) return textLook([self font], [self textColor]);
    NSMutableDictionary* const look = textLook([self font], colorOf(kind, [self shades]));
    [look setObject:@(static_cast<int>(kind)) forKey:KIND];
    return look;
}

- (NSAttributedString*)text:(NSString*)text as:(TextKind)kind {
    NSMutableDictionary* const look = [NSMutableDictionary dictionaryWithDictionary:[self lookOf:kind]];
    if ([self defaultParagraphStyle])
        [look setObject:[self defaultParagraphStyle] forKey:NSParagraphStyleAttributeName];
    return [[[NSAttributedString alloc] initWithString:text attributes:look] autorelease];
}

- (void)show:(NSRange)range as:(TextKind)kind {
    NSTextStorage* const storage = [self textStorage];
    [storage beginEditing];
    if (kind == TextKind::Typed) [storage removeAttribute:KIND range:range];
    [storage addAttributes:[self lookOf:kind] range:range];
    [storage endEditing];
}

// Everything in the shade of its kind, in new colors.
- (void)showKinds {
    NSTextStorage* const storage = [self textStorage];
    const TextShades shades = [self shades];
    NSRange run = NSMakeRange(0, 0);
    [storage beginEditing];
    for (NSUInteger i = 0; i < [storage length]; i = NSMaxRange(run)) {
        NSNumber* const kind = [storage attribute:KIND atIndex:i effectiveRange:&run];
        if (!kind) continue;
        NSColor* const color = colorOf(static_cast<TextKind>([kind intValue]), shades);
        [storage addAttribute:NSForegroundColorAttributeName value:color range:run];
    }
    [storage endEditing];
}

// --- The bracket that belongs to the one at the cursor ---

// While a script is replayed its output stands where the entry does, as much as it may be.
- (NSRect)bracketToMark {
    if (isAtWork || scripts.isReplaying) return NSZeroRect;
    const NSRange selected = [self selectedRange];
    const auto start = static_cast<NSUInteger>(g_linestart);
    if (selected.length > 0 || selected.location < start || [[self string] length] <= start)
        return NSZeroRect;
    NSString* const entry = [[self string] substringFromIndex:start];
    std::u16string text([entry length], u'\0');
    [entry getCharacters:reinterpret_cast<unichar*>(text.data())];
    const std::optional<size_t> place = partnerOfBracketAt(text, selected.location - start);
    if (!place) return NSZeroRect;
    NSLayoutManager* const layout = [self layoutManager];
    const NSRange glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(start + *place, 1)
                                          actualCharacterRange:NULL];
    const NSRect glyph = [layout boundingRectForGlyphRange:glyphs inTextContainer:[self textContainer]];
    const NSPoint origin = [self textContainerOrigin];
    return NSOffsetRect(glyph, origin.x, origin.y);
}

- (void)markBracket {
    const NSRect mark = [self bracketToMark];
    if (NSEqualRects(mark, bracketMark)) return;
    [self setNeedsDisplayInRect:bracketMark];
    [self setNeedsDisplayInRect:mark];
    bracketMark = mark;
}

- (void)didChangeText {
    [super didChangeText];
    [self markBracket];
}

// The mark is drawn behind the text and is no part of it.
- (void)drawRect:(NSRect)dirty {
    bracketMark = [self bracketToMark]; // the text may have been laid out anew
    if (!NSIsEmptyRect(bracketMark)) {
        const TextShades shades = [self shades];
        [colorOf(shades.mark) set];
        NSRectFill(bracketMark);
        [colorOf(shades.markEdge) set];
        NSFrameRect(bracketMark);
    }
    [super drawRect:dirty];
}

@end
