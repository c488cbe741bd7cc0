import QtQuick
import Dubrix
import DubrixControls

/// An alert over whatever is shown.
AlertBox {
    required property AlertController controller
    required property ModalLayer modalLayer

    focus: true
    title: controller.title
    message: controller.message
    buttons: controller.buttons
    cancelButton: controller.cancelButton
    spinner: Qt.size(controller.spinnerFrame.width, controller.spinnerFrame.height)
    presence: modalLayer.presence
    onPressed: button => controller.press(button)
}
