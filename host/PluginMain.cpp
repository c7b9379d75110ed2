// The plug-in module's own translation unit; everything it exports lives in
// the host binding, linked in whole.
