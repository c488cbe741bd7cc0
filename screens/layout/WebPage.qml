import QtQuick
import QtWebView
import Dubrix

/// The page itself. Only this file needs the web engine, so nothing loads it before a page is
/// opened.
WebView {
    id: page

    required property QVWebViewController controller

    /// Set when the page could not be loaded: the engine's own words on that are not shown.
    property bool failed: false
    property bool finished: false

    function loaded(request: var) {
        if (request.status === WebView.LoadSucceededStatus) {
            finished = true;
            controller.webViewDidFinishLoad();
        } else if (request.status === WebView.LoadFailedStatus) {
            failed = !finished;
        }
    }

    // Not before there is something of the page: it would be a white flash in the dark.
    opacity: !failed && (finished || loadProgress > 40) ? 1 : 0
    url: controller.webView.request
    onLoadingChanged: request => loaded(request)
    Accessible.role: Accessible.WebDocument
    Accessible.name: controller.pageTitle
}
