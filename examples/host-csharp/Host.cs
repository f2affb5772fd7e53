// A host program in C#: one link by each of the two libraries, and black through both.
//   mono host.exe PRINTER.icc SOURCE.icc OUTPUT.icc PRECISE.icc
using System;
using System.Runtime.InteropServices;
using KoLink;

static class Host
{
    static IntPtr Open(string path)
    {
        PreciseError error;
        IntPtr profile = Precise.koPreciseOpenProfile(CmsLinkSettings.Path(path), out error);
        if (profile == IntPtr.Zero) throw new InvalidOperationException(path + ": " + error);
        return profile;
    }

    static void Simple(string printer, string source, string output)
    {
        CmsLinkSettings settings;
        Library.jCmsInitCms(out settings);
        settings.DestinationPath = CmsLinkSettings.Path(printer);
        settings.SourcePath = CmsLinkSettings.Path(source);
        settings.Intent = Constants.IntentPerceptual;
        settings.Preservation = Constants.PreserveSecondaries;
        settings.WhiteMode = Constants.WhiteNoInk;
        IntPtr link = Library.jKoCmykCombineIccProfile(ref settings);
        if (link == IntPtr.Zero) throw new InvalidOperationException("these profiles cannot be combined");
        try
        {
            int[] black = { 0, 0, 0, 255 };
            Library.jKoCmykCMYKtoCMYK16(link, black);
            Console.WriteLine("solid K becomes {0} {1} {2} {3} of 4080", black[0], black[1], black[2], black[3]);
            if (Library.jKoCmykSaveProfile(link, CmsLinkSettings.Path(output)) == 0)
                throw new InvalidOperationException(output + ": " + Library.Reason());
        }
        finally { Library.jKoCmykReleaseProfile(link); }
    }

    static void Accurate(string printer, string source, string output)
    {
        IntPtr from = IntPtr.Zero, to = IntPtr.Zero, link = IntPtr.Zero;
        try
        {
            PreciseOptions options;
            PreciseError error;
            from = Open(source);
            to = Open(printer);
            Precise.koPreciseInitOptions(out options);
            options.Preserve = Constants.PreserveSecondaries;
            options.GridPoints = 17;
            link = Precise.koPreciseMakeLink(from, to, IntPtr.Zero, ref options, out error);
            if (link == IntPtr.Zero) throw new InvalidOperationException(error.ToString());
            byte[] row = { 0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0 }, printed = new byte[12];
            Precise.koPreciseLinkRow8(link, row, printed, (UIntPtr)3);
            Console.WriteLine("black, white, cyan become " + string.Join(" ", printed));
            var file = new PreciseFileOptions { Size = Marshal.SizeOf(typeof(PreciseFileOptions)), Date = 1700000000 };
            if (Precise.koPreciseSaveLink(link, CmsLinkSettings.Path(output), ref file, out error) == 0)
                throw new InvalidOperationException(output + ": " + error);
        }
        finally
        {
            Precise.koPreciseReleaseLink(link);
            Precise.koPreciseReleaseProfile(to);
            Precise.koPreciseReleaseProfile(from);
        }
    }

    static int Main(string[] arguments)
    {
        if (arguments.Length != 4)
        {
            Console.Error.WriteLine("usage: host.exe PRINTER.icc SOURCE.icc OUTPUT.icc PRECISE.icc");
            return 2;
        }
        Console.WriteLine("records of {0}, {1}, {2} bytes", Marshal.SizeOf(typeof(CmsLinkSettings)),
                          Marshal.SizeOf(typeof(PreciseError)), Marshal.SizeOf(typeof(PreciseOptions)));
        try
        {
            Simple(arguments[0], arguments[1], arguments[2]);
            Accurate(arguments[0], arguments[1], arguments[3]);
        }
        catch (Exception fault)
        {
            Console.Error.WriteLine("host: " + fault.Message);
            return 1;
        }
        return 0;
    }
}
