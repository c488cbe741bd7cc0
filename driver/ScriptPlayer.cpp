#include "driver/ScriptPlayer.h"

#include <iostream>
#include <utility>

namespace dubrix {

namespace {

constexpr int lookEvery = 20; // milliseconds
constexpr int restingLooks = 8;
constexpr double tapPatience = 5;
constexpr double shotPatience = 2;

QString oneLine(const QString& text) {
    return text.trimmed().replace(QLatin1Char('\n'), QStringLiteral(" / "));
}

double patience(const ScriptStep& step) {
    switch (step.verb) {
    case ScriptStep::Verb::Tap:
    case ScriptStep::Verb::Type:
    case ScriptStep::Verb::Hold:
        return tapPatience;
    case ScriptStep::Verb::Wait:
    case ScriptStep::Verb::Gone:
        return step.seconds;
    case ScriptStep::Verb::Shot:
        return shotPatience;
    default:
        return 0;
    }
}

} // namespace

ScriptPlayer::ScriptPlayer(QQuickWindow& window, int script, ShotPipe shots)
    : screen_(window),
      script_(script),
      shots_(shots) {
    clock_.setInterval(lookEvery);
    connect(&clock_, &QTimer::timeout, this, &ScriptPlayer::look);
}

void ScriptPlayer::play() {
    clock_.start();
}

void ScriptPlayer::look() {
    narrate();
    if (!step_ && !takeStep())
        return;
    const Outcome outcome = tryStep();
    if (outcome == Outcome::Done) {
        std::cout << "ok    " << line_ << '\n' << std::flush;
        step_.reset();
    } else if (outcome == Outcome::Failed ||
               waiting_.elapsed() >= static_cast<qint64>(patience(*step_) * 1000)) {
        fail();
    }
}

void ScriptPlayer::narrate() {
    const QList<Screen::Alert> shown = screen_.alerts();
    for (const Screen::Alert& alert : shown)
        if (!alerts_.contains(alert))
            std::cout << "      " << oneLine(alert.title).toStdString()
                      << (alert.message.isEmpty() ? "" : ": ")
                      << oneLine(alert.message).toStdString() << '\n'
                      << std::flush;
    alerts_ = shown;
}

bool ScriptPlayer::takeStep() {
    while (const std::optional<std::string> line = script_.nextLine()) {
        line_ = *line;
        const ScriptLine parsed = parseScriptLine(line_);
        if (!parsed.error.empty()) {
            std::cout << "wrong " << line_ << "\n      " << parsed.error << '\n' << std::flush;
            end(2);
            return false;
        }
        if (parsed.step) {
            step_ = parsed.step;
            reason_.clear();
            waiting_.start();
            return true;
        }
    }
    if (script_.atEnd())
        end(0);
    return false;
}

ScriptPlayer::Outcome ScriptPlayer::tryStep() {
    const QString target = QString::fromStdString(step_->target);
    const auto when = [](bool done) { return done ? Outcome::Done : Outcome::NotYet; };
    switch (step_->verb) {
    case ScriptStep::Verb::Tap:
        return when(screen_.tap(target));
    case ScriptStep::Verb::Type:
        return when(screen_.type(target, QString::fromStdString(step_->text)));
    case ScriptStep::Verb::Wait:
    case ScriptStep::Verb::Expect:
        return when(screen_.shows(target));
    case ScriptStep::Verb::Gone:
    case ScriptStep::Verb::Absent:
        return when(!screen_.shows(target));
    case ScriptStep::Verb::Hold:
        return when(screen_.hold(target));
    case ScriptStep::Verb::Drop:
        return when(screen_.drop(target));
    case ScriptStep::Verb::Shot:
        return takeShot();
    }
    return Outcome::Failed;
}

ScriptPlayer::Outcome ScriptPlayer::takeShot() {
    // Alike for a while: what moved has come to rest. Two looks do not tell, since a busy machine
    // may have drawn no frame between them. Something that turns all the time never rests.
    const QByteArray picture = screen_.picture();
    const bool alike = picture == std::exchange(picture_, picture) && !screen_.isLoading();
    looksAlike_ = alike ? looksAlike_ + 1 : 0;
    if (looksAlike_ < restingLooks && waiting_.elapsed() < static_cast<qint64>(shotPatience * 1000))
        return Outcome::NotYet;
    picture_.clear();
    looksAlike_ = 0;
    return saveShot(step_->target, picture);
}

ScriptPlayer::Outcome ScriptPlayer::saveShot(const std::string& file, const QByteArray& picture) {
    reason_ = shots_.save(file, {picture.constData(), static_cast<std::size_t>(picture.size())});
    return reason_.empty() ? Outcome::Done : Outcome::Failed;
}

void ScriptPlayer::fail() {
    std::cout << "FAIL  " << line_ << "\n";
    if (!reason_.empty())
        std::cout << "      " << reason_ << "\n";
    std::cout << "      visible instead:\n";
    for (const QString& text : screen_.texts())
        std::cout << "        \"" << oneLine(text).toStdString() << "\"\n";
    std::cout << "      to tap:\n";
    for (const QString& name : screen_.names())
        std::cout << "        \"" << oneLine(name).toStdString() << "\"\n";
    if (reason_.empty() && saveShot(std::string(failureShot), screen_.picture()) == Outcome::Done)
        std::cout << "      saved " << failureShot << "\n";
    std::cout << std::flush;
    end(1);
}

void ScriptPlayer::end(int status) {
    clock_.stop();
    step_.reset();
    Q_EMIT finished(status);
}

} // namespace dubrix
