#include "terminal/TerminalAlerts.h"

#include "formats/text/PlainText.h"

#include <algorithm>
#include <utility>

namespace dubrix {

namespace {

/// What comes of an application's name may not act on the terminal; a message has lines.
std::string harmless(const std::string& text) {
    std::string lines;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines += onOneLine(std::string_view(text).substr(start, end - start));
        lines += end < text.size() ? "\n" : "";
        start = end + 1;
    }
    return lines;
}

std::string heading(const Text& title, const Text& message) {
    std::string text;
    if (title)
        text += onOneLine(*title) + "\n";
    if (message)
        text += harmless(*message) + "\n";
    return text;
}

/// "[N]ew duplicate": the letter that chooses it in brackets.
std::string choice(const std::string& title) {
    return "[" + title.substr(0, 1) + "]" + title.substr(1);
}

bool chooses(const std::string& typed, const std::string& title) {
    const std::string wanted = lowerCase(title);
    return typed == wanted || typed == wanted.substr(0, 1);
}

std::string trimmed(const std::string& text) {
    const std::size_t start = text.find_first_not_of(" \t\r");
    const std::size_t end = text.find_last_not_of(" \t\r");
    return start == std::string::npos ? "" : text.substr(start, end - start + 1);
}

} // namespace

void TerminalAlerts::showSimpleAlertWithTitle(const Text& title, const Text& message,
                                              const std::string& okText) {
    open_.push_back({title, message, {{okText, [] {}}}});
}

void TerminalAlerts::show2ButtonAlertWithTitle(const Text& title, const Text& message,
                                               const std::string& okButton,
                                               const std::string& cancelButton,
                                               AlertBlock cancelBlock, AlertBlock okBlock) {
    open_.push_back(
        {title, message, {{okButton, std::move(okBlock)}, {cancelButton, std::move(cancelBlock)}}});
}

void TerminalAlerts::show3ButtonAlertWithTitle(const Text& title, const Text& message,
                                               const std::string& firstButton,
                                               const std::string& secondButton,
                                               const std::string& cancelButton,
                                               AlertBlock firstBlock, AlertBlock secondBlock) {
    open_.push_back({title,
                     message,
                     {{firstButton, std::move(firstBlock)},
                      {secondButton, secondBlock},
                      {cancelButton, secondBlock}}});
}

void TerminalAlerts::presentProgressAlert(const ProgressAlert& alert) {
    const std::size_t end = std::min(alert.message.find("\nPlease wait"), alert.message.size());
    std::string work = alert.message.substr(0, end);
    std::ranges::replace(work, '\n', ' ');
    workBegins(work);
}

const TerminalAlerts::Button* TerminalAlerts::pressed(const Question& question) {
    const std::vector<Button>& buttons = question.buttons;
    const bool isOffer = buttons.size() > 2;
    const Reply reply = isOffer ? toOffers_ : toQuestions_;
    if (buttons.size() > 1 && reply != Reply::Ask)
        return &buttons[reply == Reply::Yes ? 0 : 1];
    conversation_.say(heading(question.title, question.message));
    if (buttons.size() == 1)
        return &buttons[0];
    std::string choices;
    for (const Button& button : buttons)
        choices += choice(button.title) + (&button == &buttons.back() ? " " : "  ");
    while (true) {
        conversation_.say(choices);
        const std::optional<std::string> line = conversation_.answer();
        if (!line) {
            conversation_.say("\n");
            wasUnanswered_ = true;
            return nullptr;
        }
        const std::string typed = lowerCase(trimmed(*line));
        const auto found = std::ranges::find_if(
            buttons, [&typed](const Button& button) { return chooses(typed, button.title); });
        if (found != buttons.end())
            return &*found;
    }
}

void TerminalAlerts::settle() {
    while (!open_.empty()) {
        const Question question = std::move(open_.front());
        open_.erase(open_.begin());
        if (const Button* const button = pressed(question))
            button->block();
    }
}

} // namespace dubrix
