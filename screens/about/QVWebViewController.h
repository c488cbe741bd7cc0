#pragma once

#include "screens/ViewController.h"

#include <QUrl>
#include <memory>
#include <string>

namespace dubrix {

/// The state of the view that shows a page.
class WebView : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    /// The page to load; empty for none.
    Q_PROPERTY(QUrl request READ request NOTIFY requestChanged)

public:
    using QObject::QObject;
    QUrl request() const { return request_; }
    void loadRequest(const QUrl& address) {
        request_ = address;
        Q_EMIT requestChanged();
    }
    /// Whether the page goes beyond its edges when it is dragged, and springs back.
    bool bounces() const { return bounces_; }
    void setBounces(bool bounces) { bounces_ = bounces; }

Q_SIGNALS:
    void requestChanged();

private:
    QUrl request_;
    bool bounces_ = true;
};

/// The state of a spinner.
class ActivityIndicatorView : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool animating READ animating NOTIFY changed)
    Q_PROPERTY(bool hidden READ hidden NOTIFY changed)

public:
    using QObject::QObject;
    bool animating() const { return animating_; }
    void startAnimating() { setAnimating(true); }
    void stopAnimating() { setAnimating(false); }
    bool hidden() const { return hidden_; }
    void setHidden(bool hidden) {
        if (hidden != std::exchange(hidden_, hidden))
            Q_EMIT changed();
    }

Q_SIGNALS:
    void changed();

private:
    void setAnimating(bool animating) {
        if (animating != std::exchange(animating_, animating))
            Q_EMIT changed();
    }

    bool animating_ = false;
    bool hidden_ = false;
};

/// A web page on a screen of its own, under a spinner until it has loaded. The page of one that
/// never loads stays blank and its spinner keeps turning.
class QVWebViewController : public ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(QString pageTitle MEMBER pageTitle CONSTANT)
    Q_PROPERTY(dubrix::WebView* webView READ webViewOutlet CONSTANT)
    Q_PROPERTY(
        dubrix::ActivityIndicatorView* activityIndicator READ activityIndicatorOutlet CONSTANT)

public:
    using ViewController::ViewController;

    QString layout() const override { return QStringLiteral("WebPageView.qml"); }

    /// What to show; called before the screen is. A text that is no address gives a page that never
    /// loads.
    void setURL(const std::string& address, const std::string& pageTitle);

    /// The layout reports each load that has come to its end. The first puts the spinner away for
    /// good.
    Q_INVOKABLE void webViewDidFinishLoad();

    /// Made when the view loads.
    std::unique_ptr<WebView> webView;
    std::unique_ptr<ActivityIndicatorView> activityIndicator;
    QUrl webURL;
    QString pageTitle;

protected:
    void viewDidLoad() override;

private:
    WebView* webViewOutlet() { return webView.get(); }
    ActivityIndicatorView* activityIndicatorOutlet() { return activityIndicator.get(); }
};

} // namespace dubrix
