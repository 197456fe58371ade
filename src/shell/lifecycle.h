// The room shell/: the composition root, the only room that knows all others. Life of the plug-in (this
// header): start, enable, disable, stop, and the messages of the simulator; the frame callbacks that call the
// rooms in their order (frame_callbacks.h); the menu. At start it connects the rooms where a lower one calls a
// higher one.
//
// Everything here runs on the simulator's thread, with no lock held. What is created in enable is released in
// disable, in reverse. Worker threads are started once per load, by the deferred-start flight loop one frame
// after the first enable, so that the simulator has finished loading the aircraft; each is joined before the
// locks go. Calls in an order that makes no sense are harmless: a second start or enable changes nothing,
// enable without start is refused, disable and messages count while enabled only, stop disables first.
#pragma once

// Fills the identity (buffers of 256 bytes), opens the logs, builds the menu, looks up datarefs and
// commands, places the start values. Returns 1.
int StartPlugin(char* name, char* signature, char* description);
// Reads the settings, creates the locks, registers the flight loops. Returns 1, or 0 when the system
// refuses the locks.
int EnablePlugin();
void DisablePlugin();
void StopPlugin();
// A message of the simulator (from 0) or of another plug-in.
void ReceivePluginMessage(int from, int message, void* parameter);
