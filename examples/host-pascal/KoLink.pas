{ The records and calls of KoLink for Delphi and Free Pascal: kolink/link_settings.h,
  kolink/cmyk_profile.h, kolink/precise.h. Texts of the first library are Shift-JIS, those of the
  precise one UTF-8. Exceptions of the floating-point unit may stay as Delphi has them: the libraries
  set what they need and give it back. Records go as var: Free Pascal hands a const one over by value,
  as C would. }
unit KoLink;

{$IFDEF FPC}
  {$MODE DELPHI}
  {$PACKRECORDS C}
{$ELSE}
  {$ALIGN 8}
{$ENDIF}
{$MINENUMSIZE 4}

interface

const
{$IFDEF MSWINDOWS}
  KoLinkName = 'KoLink.dll';
  KoPreciseName = 'KoLinkPrecise.dll';
{$ELSE}
  KoLinkName = 'libkolink.so.1';
  KoPreciseName = 'libkolink-precise.so.1';
{$ENDIF}

  KOLINK_PATH_SIZE = 260;
  KOLINK_INTENT_PERCEPTUAL = 0;
  KOLINK_INTENT_RELATIVE = 1;
  KOLINK_INTENT_SATURATION = 2;
  KOLINK_PRESERVE_NONE = 0;
  KOLINK_PRESERVE_PRIMARIES = 1;
  KOLINK_PRESERVE_SECONDARIES = 2;
  KOLINK_WHITE_CONVERTED = 0;
  KOLINK_WHITE_NO_INK = 1;
  KOLINK_WHITE_PAPER = 2;

type
  TKoPath = array[0..KOLINK_PATH_SIZE - 1] of AnsiChar;
  TKoLevels = array[0..3] of LongInt;
  PCmykProfile = Pointer;
  PKoPreciseProfile = Pointer;
  PKoPreciseLink = Pointer;

  { 1332 bytes; start from jCmsInitCms }
  TCmsLinkSettings = record
    basePath, sourcePath, destinationPath, blackPath, outputPath: TKoPath;
    intent, preservation, whiteMode: LongInt;
    paperC, paperM, paperY, paperK: LongInt;
    limit: LongInt;
  end;

  { 1016 bytes }
  TKoPreciseError = record
    code, part: LongInt;
    text: array[0..1007] of AnsiChar;
  end;

  { 368 bytes; start from koPreciseInitOptions }
  TKoPreciseOptions = record
    size, method, intent, blackPointCompensation, black, preserve, white, bits, gridPoints,
      nodes: LongInt;
    clip, inkLimit, saveInk, saveInkAbove: Double;
    paper: array[0..3] of Double;
    paperFade: Double;
    blackCurve: array[0..255] of Byte;
  end;

  TKoPreciseFileOptions = record
    size, editable: LongInt;
    date: Int64;
    name, editName, editComment, provenance: PAnsiChar;
  end;

function jCmsInitCms(var settings: TCmsLinkSettings): LongInt; cdecl; external KoLinkName;
function jKoCmykCombineIccProfile(var settings: TCmsLinkSettings): PCmykProfile; cdecl;
  external KoLinkName;
function jKoCmykSaveProfile(profile: PCmykProfile; path: PAnsiChar): LongInt; cdecl;
  external KoLinkName;
function jKoCmykReleaseProfile(profile: PCmykProfile): LongInt; cdecl; external KoLinkName;
procedure jKoCmykCMYKtoCMYK16(profile: PCmykProfile; var cmyk: TKoLevels); cdecl;
  external KoLinkName;
procedure jKoCmykCMYKtoCMYK16Row(profile: PCmykProfile; input: PByte; pixels: LongInt;
  output: PWord); cdecl; external KoLinkName;

function koPreciseOpenProfile(path: PAnsiChar; var error: TKoPreciseError): PKoPreciseProfile;
  cdecl; external KoPreciseName;
procedure koPreciseReleaseProfile(profile: PKoPreciseProfile); cdecl; external KoPreciseName;
function koPreciseInitOptions(var options: TKoPreciseOptions): LongInt; cdecl;
  external KoPreciseName;
function koPreciseMakeLink(source, destination, base: PKoPreciseProfile;
  var options: TKoPreciseOptions; var error: TKoPreciseError): PKoPreciseLink; cdecl;
  external KoPreciseName;
procedure koPreciseReleaseLink(link: PKoPreciseLink); cdecl; external KoPreciseName;
procedure koPreciseLinkRow8(link: PKoPreciseLink; input, output: PByte; count: NativeUInt); cdecl;
  external KoPreciseName;
procedure koPreciseLinkRow16(link: PKoPreciseLink; input, output: PWord; count: NativeUInt); cdecl;
  external KoPreciseName;
function koPreciseSaveLink(link: PKoPreciseLink; path: PAnsiChar;
  var options: TKoPreciseFileOptions; var error: TKoPreciseError): LongInt; cdecl; external KoPreciseName;

{ A path into a field; false when it is too long, as a cut one would name another file. }
function KoSetPath(var field: TKoPath; const path: AnsiString): Boolean;

implementation

function KoSetPath(var field: TKoPath; const path: AnsiString): Boolean;
begin
  Result := Length(path) < KOLINK_PATH_SIZE;
  if not Result then Exit;
  FillChar(field, SizeOf(field), 0);
  if path <> '' then Move(path[1], field, Length(path));
end;

end.
