// PluginConsole: while a plug-in entry point runs, sends what the plug-in
// prints to the console away from the tool's standard output, so that the
// tool's own output (control listings, comparisons) stays clean for scripts.
// Normally the plug-in's standard output goes to standard error; when quiet,
// both its standard output and standard error are dropped.
#pragma once

class PluginConsole {
  public:
    explicit PluginConsole(bool quiet);
    ~PluginConsole();
    PluginConsole(const PluginConsole&) = delete;
    PluginConsole& operator=(const PluginConsole&) = delete;

  private:
    bool quiet_;
    int savedOut_ = -1;
    int savedErr_ = -1;
};
