#pragma once

#include <QColor>
#include <QMarginsF>
#include <QObject>
#include <QString>
#include <qqmlregistration.h>

namespace dubrix {

/// The state of the objects in the interface layout that the screens' code reaches. A controller
/// owns them and changes them; the layout binds to them one way and draws what they say.

class Label : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)

public:
    using QObject::QObject;
    QString text() const { return text_; }
    void setText(const QString& text) {
        if (text != std::exchange(text_, text))
            Q_EMIT textChanged();
    }

Q_SIGNALS:
    void textChanged();

private:
    QString text_;
};

class View : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool hidden READ hidden WRITE setHidden NOTIFY hiddenChanged)
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY
                   backgroundColorChanged)

public:
    using QObject::QObject;
    bool hidden() const { return hidden_; }
    void setHidden(bool hidden) {
        if (hidden != std::exchange(hidden_, hidden))
            Q_EMIT hiddenChanged();
    }
    QColor backgroundColor() const { return backgroundColor_; }
    void setBackgroundColor(const QColor& color) {
        if (color != std::exchange(backgroundColor_, color))
            Q_EMIT backgroundColorChanged();
    }

Q_SIGNALS:
    void hiddenChanged();
    void backgroundColorChanged();

private:
    bool hidden_ = false;
    QColor backgroundColor_;
};

class TableViewCell : public dubrix::View {
    Q_OBJECT
    QML_ANONYMOUS

public:
    using View::View;
};

class SwitchControl : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool on READ on WRITE setOn NOTIFY onChanged)

public:
    using QObject::QObject;
    bool on() const { return on_; }
    void setOn(bool on) {
        if (on != std::exchange(on_, on))
            Q_EMIT onChanged();
    }

Q_SIGNALS:
    void onChanged();

private:
    bool on_ = false;
};

class TextField : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(ReturnKey returnKey READ returnKey NOTIFY returnKeyChanged)

public:
    /// What the keyboard's return key says.
    enum class ReturnKey { Default = 0, Done = 9 };
    Q_ENUM(ReturnKey)

    using QObject::QObject;
    QString text() const { return text_; }
    void setText(const QString& text) {
        if (text != std::exchange(text_, text))
            Q_EMIT textChanged();
    }
    ReturnKey returnKey() const { return returnKey_; }
    void setReturnKey(ReturnKey key) {
        if (key != std::exchange(returnKey_, key))
            Q_EMIT returnKeyChanged();
    }

Q_SIGNALS:
    void textChanged();
    void returnKeyChanged();
    /// The field gives up the keyboard.
    void editingEnded();

private:
    QString text_;
    ReturnKey returnKey_ = ReturnKey::Default;
};

class TableView : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// Space in points below the last row, above the first and at the sides.
    Q_PROPERTY(QMarginsF contentInset READ contentInset NOTIFY contentInsetChanged)
    Q_PROPERTY(double bottomInset READ bottomInset NOTIFY contentInsetChanged)
    /// Counts the reloads: whatever is drawn from the controller's answers is asked for again when
    /// it changes.
    Q_PROPERTY(int reloads READ reloads NOTIFY reloaded)
    Q_PROPERTY(int selectedSection READ selectedSection NOTIFY selectionChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectionChanged)
    Q_PROPERTY(bool selectionAnimated READ selectionAnimated NOTIFY selectionChanged)

public:
    using QObject::QObject;

    QMarginsF contentInset() const { return contentInset_; }
    double bottomInset() const { return contentInset_.bottom(); }
    void setContentInset(const QMarginsF& inset) {
        if (inset != std::exchange(contentInset_, inset))
            Q_EMIT contentInsetChanged();
    }

    int reloads() const { return reloads_; }
    /// Asks for a reload, which comes when the caller has returned to the event loop.
    void reloadData() {
        QMetaObject::invokeMethod(
            this,
            [this] {
                ++reloads_;
                Q_EMIT reloaded();
            },
            Qt::QueuedConnection);
    }

    int selectedSection() const { return selectedSection_; }
    int selectedRow() const { return selectedRow_; }
    bool selectionAnimated() const { return selectionAnimated_; }
    void selectRow(int section, int row) { setSelection(section, row, false); }
    void deselectRow(bool animated) { setSelection(-1, -1, animated); }

Q_SIGNALS:
    void contentInsetChanged();
    void reloaded();
    void selectionChanged();

private:
    void setSelection(int section, int row, bool animated) {
        selectedSection_ = section;
        selectedRow_ = row;
        selectionAnimated_ = animated;
        Q_EMIT selectionChanged();
    }

    QMarginsF contentInset_;
    int reloads_ = 0;
    int selectedSection_ = -1;
    int selectedRow_ = -1;
    bool selectionAnimated_ = false;
};

} // namespace dubrix
