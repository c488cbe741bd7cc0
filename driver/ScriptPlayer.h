#pragma once

#include "driver/Screen.h"
#include "driver/script/ScriptReader.h"
#include "driver/script/ScriptStep.h"
#include "driver/script/ShotPipe.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

namespace dubrix {

/// Acts out a script on the real window, a step at a time, and says on standard output what came
/// of each step and which alerts and status texts appeared meanwhile. The first step that fails
/// ends the play with what was visible instead and a picture.
class ScriptPlayer : public QObject {
    Q_OBJECT

public:
    /// The lines of the script come from the descriptor `script`.
    ScriptPlayer(QQuickWindow& window, int script, ShotPipe shots);

    void play();

Q_SIGNALS:
    /// 0: every step went well; 1: one did not; 2: a line was no step.
    void finished(int status);

private:
    enum class Outcome { Done, NotYet, Failed };

    void look();
    void narrate();
    bool takeStep();
    Outcome tryStep();
    Outcome takeShot();
    Outcome saveShot(const std::string& file, const QByteArray& picture);
    void fail();
    void end(int status);

    Screen screen_;
    ScriptReader script_;
    ShotPipe shots_;
    QTimer clock_;
    QElapsedTimer waiting_;
    std::string line_;
    std::optional<ScriptStep> step_;
    std::string reason_;
    QByteArray picture_;
    int looksAlike_ = 0;
    QList<Screen::Alert> alerts_;
};

} // namespace dubrix
