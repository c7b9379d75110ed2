// RenderJob: File > Render. Writes the frames through sparkrun itself (the
// program beside this one), given the set-up saved from the viewer's current
// values: the same code path as a sparkrun run with that set-up, so the
// files are byte for byte what `sparkrun --setup SAVED ... INPUT OUTPUT`
// writes. Progress comes from sparkrun's --verbose frame lines; cancelling
// stops sparkrun with SIGTERM, which removes the frame being written (the
// frames before it are whole) and exits 143.
#pragma once

#include <QObject>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <vector>

#include "RunOptions.h"

class RenderJob : public QObject {
    Q_OBJECT
  public:
    RenderJob(const RunOptions& options, QObject* parent = nullptr);

    // The sparkrun arguments for the frames of input into output with setup.
    QStringList arguments(const QString& setup, const QString& input, const QString& output,
                          const std::vector<unsigned>& frames) const;
    static QString sparkrunPath();

    void start(const QString& setup, const QString& input, const QString& output,
               const std::vector<unsigned>& frames);
    void cancel();
    bool running() const { return process_.state() != QProcess::NotRunning; }

  signals:
    void progressed(int framesDone, int total);
    // ok, the exit code, and sparkrun's error text when it failed.
    void finished(bool ok, int code, QString errors, bool cancelled);

  private:
    void readOutput();

    RunOptions options_;
    QProcess process_;
    QByteArray pending_;
    int done_ = 0;
    int total_ = 0;
    bool cancelled_ = false;
};
