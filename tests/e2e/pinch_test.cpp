// Pinch-zoom: the web view decides at the start of each pinch whether it may go on.

#include "E2E.hpp"

namespace websdk::e2e {
namespace {

// A two-finger touchpad pinch as GDK delivers it to the web view.
void pinch(GtkWidget* widget, GdkTouchpadGesturePhase phase, double scale) {
  GdkEvent* event = gdk_event_new(GDK_TOUCHPAD_PINCH);
  GdkWindow* window = gtk_widget_get_window(widget);
  event->touchpad_pinch.window = GDK_WINDOW(g_object_ref(window));
  event->touchpad_pinch.phase = phase;
  event->touchpad_pinch.n_fingers = 2;
  event->touchpad_pinch.scale = scale;
  event->touchpad_pinch.x = 100;
  event->touchpad_pinch.y = 100;
  event->touchpad_pinch.time = GDK_CURRENT_TIME;
  gdk_event_set_device(event, gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_window_get_display(window))));
  gtk_main_do_event(event);
  gdk_event_free(event);
}

TEST_F(E2ETest, APinchIsRefusedAtItsStartUnlessEnabled) {
  server.page("/page", testPage());
  ASSERT_TRUE(loadAndWait(server.url("/page")));
  auto& engine = dynamic_cast<webkitgtk::WebKitGTKEngine&>(view->engine());
  GtkWidget* widget = webkitgtk::widget(engine);
  ASSERT_TRUE(engine.hasPinchGestureRecognizer());

  for (const bool enabled : {false, true, false}) {
    view->setPinchGestureEnable(enabled);
    pinch(widget, GDK_TOUCHPAD_GESTURE_PHASE_BEGIN, 1.0);
    pinch(widget, GDK_TOUCHPAD_GESTURE_PHASE_UPDATE, 1.5);
    pinch(widget, GDK_TOUCHPAD_GESTURE_PHASE_END, 1.5);
    EXPECT_EQ(engine.pinchGestureRecognizerEnabled(), enabled);
  }
}

}  // namespace
}  // namespace websdk::e2e
