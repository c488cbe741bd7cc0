#include "screens/about/QVWebViewController.h"

namespace dubrix {

void QVWebViewController::setURL(const std::string& address, const std::string& title) {
    webURL = QUrl(QString::fromStdString(address), QUrl::StrictMode);
    pageTitle = QString::fromStdString(title);
}

void QVWebViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    setTitle(pageTitle);
    webView = std::make_unique<WebView>();
    if (!webURL.isRelative())
        webView->loadRequest(webURL);
    webView->setBounces(false);
    activityIndicator = std::make_unique<ActivityIndicatorView>();
    activityIndicator->startAnimating();
}

void QVWebViewController::webViewDidFinishLoad() {
    activityIndicator->stopAnimating();
    activityIndicator->setHidden(true);
}

} // namespace dubrix
