// A camera on a thread of its own: microscope [seconds [still.jpg]]
using System;
using System.Collections.Concurrent;
using System.Runtime.InteropServices;
using System.Threading;

// The one thread that calls the library. The library's timers measure and poll the button from this
// thread's message loop, and the handlers are called on it.
sealed class CameraThread : IDisposable
{
    public Action<double> OnMagnification = delegate { };
    public Action OnButton = delegate { };

    readonly int device;
    readonly Thread thread;
    readonly ConcurrentQueue<Action> requests = new ConcurrentQueue<Action>();
    readonly ManualResetEventSlim started = new ManualResetEventSlim();
    QVX64.ButtonHandler buttonHandler;  // in a field: the library's pointer does not keep it alive
    uint threadId;
    bool found;

    public CameraThread(int device)
    {
        this.device = device;
        thread = new Thread(Run) { Name = "camera" };
        thread.SetApartmentState(ApartmentState.STA);
    }

    // False when there is no camera.
    public bool Open()
    {
        thread.Start();
        started.Wait();
        return found;
    }

    // Calls the function on the camera's thread and waits for what it returns.
    public T Ask<T>(Func<T> function)
    {
        T result = default(T);
        using (var done = new ManualResetEventSlim())
        {
            requests.Enqueue(() => { result = function(); done.Set(); });
            PostThreadMessageW(threadId, RequestMessage, IntPtr.Zero, IntPtr.Zero);
            done.Wait();
        }
        return result;
    }

    public void Dispose()
    {
        PostThreadMessageW(threadId, QuitMessage, IntPtr.Zero, IntPtr.Zero);
        thread.Join();
    }

    void Run()
    {
        Message message;
        PeekMessageW(out message, IntPtr.Zero, 0, 0, 0);  // from here on others can post to it
        threadId = GetCurrentThreadId();
        QVX64.SetVideoDeviceIndex(device);
        found = QVX64.Init() != 0;
        if (found) Listen();
        started.Set();
        if (found) DispatchMessages();
    }

    void Listen()
    {
        buttonHandler = () => OnButton();
        QVX64.SetEventCallback(buttonHandler);
        QVX64.EnablePressKey(1);  // after Init, which may switch it off
    }

    void DispatchMessages()
    {
        double shown = 0;
        Message message;
        while (GetMessageW(out message, IntPtr.Zero, 0, 0) > 0)
        {
            DispatchMessageW(ref message);  // the library's timers run here
            Action request;
            while (requests.TryDequeue(out request)) request();
            double magnification = QVX64.GetMAG(device);
            if (magnification != shown) OnMagnification(shown = magnification);
        }
        // The library keeps the callback: take it back before what it calls is gone.
        QVX64.EnablePressKey(0);
        QVX64.SetEventCallback(null);
    }

    const uint QuitMessage = 0x12, RequestMessage = 0x8000;

    [StructLayout(LayoutKind.Sequential)]
    struct Message
    {
        public IntPtr Window;
        public uint Number;
        public IntPtr WParam, LParam;
        public uint Time;
        public int X, Y;
    }

    [DllImport("user32.dll")] static extern int GetMessageW(out Message message, IntPtr window, uint first, uint last);
    [DllImport("user32.dll")] static extern int PeekMessageW(out Message message, IntPtr window, uint first, uint last, uint remove);
    [DllImport("user32.dll")] static extern IntPtr DispatchMessageW(ref Message message);
    [DllImport("user32.dll")] static extern int PostThreadMessageW(uint thread, uint message, IntPtr wParam, IntPtr lParam);
    [DllImport("kernel32.dll")] static extern uint GetCurrentThreadId();
}

static class Program
{
    static int Main(string[] arguments)
    {
        const int device = QVX64.QVX_WIFI_CAMERA;
        double seconds = arguments.Length > 0 ? double.Parse(arguments[0]) : 5;
        string still = arguments.Length > 1 ? arguments[1] : "still.jpg";
        var camera = new CameraThread(device);
        camera.OnMagnification = magnification => Console.WriteLine(
            "magnification {0:F2}, field of view {1:F3} mm", magnification,
            QVX64.FOVx(device, magnification) / 1000);
        camera.OnButton = () => Console.WriteLine("button");
        if (!camera.Open())
        {
            Console.Error.WriteLine("no camera");
            return 1;
        }
        using (camera)
        {
            camera.Ask(() => { QVX64.SetLEDState(device, QVX64.QVX_LED_ON); return true; });
            bool saved = camera.Ask(() => QVX64.GetWiFiImage(still));
            Console.WriteLine(saved ? "still in {0}" : "cannot write {0}", still);
            Thread.Sleep(TimeSpan.FromSeconds(seconds));
            return saved ? 0 : 1;
        }
    }
}
