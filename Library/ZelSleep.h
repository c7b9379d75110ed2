// The pause that follows a message shown to the user, so that it can be read
// before the host redraws. Durations are whole seconds. The environment
// variable STRAIGHTLUX_SLEEP_SCALE, read at every call, multiplies them
// (0 removes the pause; test programs use that); unset or unreadable means 1.
#pragma once

void zelSleepSeconds(int seconds);
