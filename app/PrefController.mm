// SPDX-License-Identifier: MIT
#import "PrefController.h"

#import "MainConsole.h"

static const NSTimeInterval FADE_INTERVAL = 0.03;

@implementation PrefController

- (void)setMainConsole:(MainConsole*)console {
    mainConsole = console;
}

- (void)dealloc {
    [self stopFade];
    [super dealloc];
}

- (void)stopFade {
    [timer invalidate];
    [timer release];
    timer = nil;
}

- (void)fadeWindow:(float)target rate:(float)rate {
    [self stopFade];
    if (rate == 0 || static_cast<int>(rate) != 0) {
        [[mainConsole window] setAlphaValue:target];
        return;
    }
    NSArray* const fade =
        [NSArray arrayWithObjects:[NSNumber numberWithFloat:target], [NSNumber numberWithFloat:rate], nil];
    timer = [[NSTimer scheduledTimerWithTimeInterval:FADE_INTERVAL
                                              target:self
                                            selector:@selector(fadeWin:)
                                            userInfo:fade
                                             repeats:YES] retain];
}

- (void)fadeWin:(NSTimer*)tick {
    NSWindow* const window = [mainConsole window];
    const float target = [[[tick userInfo] objectAtIndex:0] floatValue];
    const float rate = [[[tick userInfo] objectAtIndex:1] floatValue];
    const float alpha = static_cast<float>([window alphaValue]);
    const float end = target > 0 ? target : 0;
    const bool isUnfinished = rate < 0 ? alpha > 0 && alpha > end : alpha < end;
    if (isUnfinished) {
        [window setAlphaValue:alpha + rate];
        return;
    }
    [window setAlphaValue:end];
    if (end == 0 && target < 0)
        [NSApp hide:nil];
    else if (end == 0)
        [window orderOut:nil];
    [[window contentView] setNeedsDisplay:YES];
    [self stopFade];
}

- (void)closePanel {
}

@end
