// Rendering through sparkrun.
#include "RenderJob.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include "HostPixels.h"

RenderJob::RenderJob(const RunOptions& options, QObject* parent)
    : QObject(parent), options_(options) {
    connect(&process_, &QProcess::readyReadStandardOutput, this, &RenderJob::readOutput);
    connect(&process_, &QProcess::finished, this, [this](int code, QProcess::ExitStatus status) {
        const bool ok = status == QProcess::NormalExit && code == 0;
        emit finished(ok, status == QProcess::NormalExit ? code : -1,
                      QString::fromLocal8Bit(process_.readAllStandardError()).trimmed(),
                      cancelled_);
    });
    connect(&process_, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            emit finished(false, -1, "cannot start " + sparkrunPath(), false);
    });
}

QString RenderJob::sparkrunPath() {
    return QDir(QCoreApplication::applicationDirPath()).filePath("sparkrun");
}

QStringList RenderJob::arguments(const QString& setup, const QString& input, const QString& output,
                                 const std::vector<unsigned>& frames) const {
    QStringList args;
    if (!options_.pluginPath.empty())
        args << "--plugin"
             << QFileInfo(QString::fromStdString(options_.pluginPath)).absoluteFilePath();
    args << "--setup" << setup;
    if (!frames.empty())
        args << "--frames" << QString("%1-%2").arg(frames.front()).arg(frames.back());
    if (options_.processors) args << "--threads" << QString::number(options_.processors);
    if (options_.depth) args << "--depth" << (options_.depth == kHostDepth8 ? "8" : "12");
    if (options_.floatEncoding == FloatEncoding::Log)
        args << "--float-encoding"
             << "log";
    if (options_.maxMemory) args << "--max-memory" << QString::number(options_.maxMemory);
    args << "--verbose"
         << "--" << input << output;
    return args;
}

void RenderJob::start(const QString& setup, const QString& input, const QString& output,
                      const std::vector<unsigned>& frames) {
    done_ = 0;
    total_ = static_cast<int>(frames.size());
    cancelled_ = false;
    pending_.clear();
    process_.start(sparkrunPath(), arguments(setup, input, output, frames));
}

void RenderJob::cancel() {
    if (!running()) return;
    cancelled_ = true;
    process_.terminate();
}

void RenderJob::readOutput() {
    pending_ += process_.readAllStandardOutput();
    int end;
    while ((end = pending_.indexOf('\n')) >= 0) {
        const QByteArray line = pending_.left(end);
        pending_.remove(0, end + 1);
        // "frame N: NAME ..." once a frame is written.
        if (line.startsWith("frame ")) emit progressed(++done_, total_);
    }
}
