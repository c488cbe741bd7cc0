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
        if (request.status === WebView.LoadSucceededStatus)
            finish();
        else if (request.status === WebView.LoadFailedStatus)
            failed = !finished;
    }

    function finish() {
        finished = true;
        controller.webViewDidFinishLoad();
    }

    /// Whether a frame of the page has finished. The engine tells only of the whole page: a frame of
    /// the same site is looked at, the end of another is in the list of what was fetched.
    readonly property string frameHasFinished: `[...document.querySelectorAll('iframe, frame')]
        .some(frame => frame.contentDocument?.readyState === 'complete'
            && frame.contentDocument.URL !== 'about:blank')
        || performance.getEntriesByType('resource')
            .some(entry => ['iframe', 'frame'].includes(entry.initiatorType))`

    Timer {
        interval: 100
        repeat: true
        running: !page.finished && !page.failed
        onTriggered: page.runJavaScript(page.frameHasFinished, hasFinished => {
            if (hasFinished && !page.finished)
                page.finish();
        })
    }

    // Not before there is something of the page: it would be a white flash in the dark.
    opacity: !failed && (finished || loadProgress > 40) ? 1 : 0
    url: controller.webView.request
    onLoadingChanged: request => loaded(request)
    Accessible.role: Accessible.WebDocument
    Accessible.name: controller.pageTitle
}
