// The records and calls of KoLink for C#: kolink/link_settings.h, kolink/cmyk_profile.h,
// kolink/precise.h. The process has to be of the library's width; texts of the first library are
// Shift-JIS, those of the precise one UTF-8.
using System;
using System.ComponentModel;
using System.Runtime.InteropServices;
using System.Text;

namespace KoLink
{
    public static class Constants
    {
        public const int PathSize = 260, NameSize = 64, CommentSize = 500;
        public const int IntentPerceptual = 0, IntentRelative = 1, IntentSaturation = 2;
        public const int PreserveNone = 0, PreservePrimaries = 1, PreserveSecondaries = 2;
        public const int WhiteConverted = 0, WhiteNoInk = 1, WhitePaper = 2;
    }

    /// <summary>CmsLinkSettings, 1332 bytes. Start from Library.jCmsInitCms.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct CmsLinkSettings
    {
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = Constants.PathSize)] public byte[] BasePath;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = Constants.PathSize)] public byte[] SourcePath;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = Constants.PathSize)] public byte[] DestinationPath;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = Constants.PathSize)] public byte[] BlackPath;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = Constants.PathSize)] public byte[] OutputPath;
        public int Intent, Preservation, WhiteMode;
        public int PaperC, PaperM, PaperY, PaperK;
        public int Limit;

        /// <summary>A path in the system's own bytes; what is too long would name another file.</summary>
        public static byte[] Path(string text)
        {
            byte[] field = new byte[Constants.PathSize], bytes = Encoding.Default.GetBytes(text);
            if (bytes.Length >= field.Length) throw new ArgumentException("this path is too long: " + text);
            bytes.CopyTo(field, 0);
            return field;
        }
    }

    /// <summary>KoPreciseError, 1016 bytes.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct PreciseError
    {
        public int Code, Part;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 1008)] public byte[] Bytes;

        public override string ToString()
        {
            int end = Bytes == null ? 0 : Array.IndexOf(Bytes, (byte)0);
            return end <= 0 ? "memory is short" : Encoding.UTF8.GetString(Bytes, 0, end);
        }
    }

    /// <summary>KoPreciseOptions, 368 bytes. Start from Precise.koPreciseInitOptions.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct PreciseOptions
    {
        public int Size, Method, Intent, BlackPointCompensation, Black, Preserve, White, Bits, GridPoints, Nodes;
        public double Clip, InkLimit, SaveInk, SaveInkAbove;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 4)] public double[] Paper;
        public double PaperFade;
        [MarshalAs(UnmanagedType.ByValArray, SizeConst = 256)] public byte[] BlackCurve;
    }

    /// <summary>KoPreciseFileOptions.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct PreciseFileOptions
    {
        public int Size, Editable;
        public long Date;
        public IntPtr Name, EditName, EditComment, Provenance;
    }

    /// <summary>KoLink.dll, libkolink.so.1.</summary>
    public static class Library
    {
        const string Name = "KoLink";
        const CallingConvention Cdecl = CallingConvention.Cdecl;

        [DllImport(Name, CallingConvention = Cdecl)] public static extern int jCmsInitCms(out CmsLinkSettings settings);
        [DllImport(Name, CallingConvention = Cdecl, SetLastError = true)]
        public static extern IntPtr jKoCmykCombineIccProfile(ref CmsLinkSettings settings);
        [DllImport(Name, CallingConvention = Cdecl, SetLastError = true)]
        public static extern int jKoCmykSaveProfile(IntPtr profile, byte[] path);
        [DllImport(Name, CallingConvention = Cdecl)] public static extern int jKoCmykReleaseProfile(IntPtr profile);
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern void jKoCmykCMYKtoCMYK16(IntPtr profile, [In, Out] int[] cmyk);
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern void jKoCmykCMYKtoCMYK16Row(IntPtr profile, byte[] input, int pixels, [Out] ushort[] output);

        /// <summary>The system's reason of the last failure.</summary>
        public static string Reason() { return new Win32Exception(Marshal.GetLastWin32Error()).Message; }
    }

    /// <summary>KoLinkPrecise.dll, libkolink-precise.so.1.</summary>
    public static class Precise
    {
        const string Name = "KoLinkPrecise";
        const CallingConvention Cdecl = CallingConvention.Cdecl;

        [DllImport(Name, CallingConvention = Cdecl)] public static extern IntPtr koPreciseVersion();
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern IntPtr koPreciseOpenProfile(byte[] path, out PreciseError error);
        [DllImport(Name, CallingConvention = Cdecl)] public static extern void koPreciseReleaseProfile(IntPtr profile);
        [DllImport(Name, CallingConvention = Cdecl)] public static extern int koPreciseInitOptions(out PreciseOptions options);
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern IntPtr koPreciseMakeLink(IntPtr source, IntPtr destination, IntPtr baseLink,
                                                      ref PreciseOptions options, out PreciseError error);
        [DllImport(Name, CallingConvention = Cdecl)] public static extern void koPreciseReleaseLink(IntPtr link);
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern void koPreciseLinkRow8(IntPtr link, byte[] input, [Out] byte[] output, UIntPtr count);
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern void koPreciseLinkRow16(IntPtr link, ushort[] input, [Out] ushort[] output, UIntPtr count);
        [DllImport(Name, CallingConvention = Cdecl)]
        public static extern int koPreciseSaveLink(IntPtr link, byte[] path, ref PreciseFileOptions file, out PreciseError error);
    }
}
