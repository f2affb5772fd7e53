{ A host program: one link by each of the two libraries, and black through both.
    host PRINTER.icc SOURCE.icc OUTPUT.icc PRECISE.icc }
program Host;

{$IFDEF FPC}{$MODE DELPHI}{$ENDIF}
{$APPTYPE CONSOLE}

uses
  KoLink;

procedure Fail(const text: AnsiString);
begin
  WriteLn({$IFDEF FPC}StdErr{$ELSE}ErrOutput{$ENDIF}, 'host: ', text);
  Halt(1);
end;

procedure Simple(const printer, source, output: AnsiString);
var
  settings: TCmsLinkSettings;
  link: PCmykProfile;
  black: TKoLevels;
begin
  jCmsInitCms(settings);
  if not KoSetPath(settings.destinationPath, printer) or not KoSetPath(settings.sourcePath, source) then
    Fail('a path is too long');
  settings.intent := KOLINK_INTENT_PERCEPTUAL;
  settings.preservation := KOLINK_PRESERVE_SECONDARIES;
  settings.whiteMode := KOLINK_WHITE_NO_INK;
  link := jKoCmykCombineIccProfile(settings);
  if link = nil then Fail('these profiles cannot be combined');
  black[0] := 0;
  black[1] := 0;
  black[2] := 0;
  black[3] := 255;
  jKoCmykCMYKtoCMYK16(link, black);
  WriteLn('solid K becomes ', black[0], ' ', black[1], ' ', black[2], ' ', black[3], ' of 4080');
  if jKoCmykSaveProfile(link, PAnsiChar(output)) = 0 then Fail(output + ': cannot be written');
  jKoCmykReleaseProfile(link);
end;

procedure Accurate(const printer, source, output: AnsiString);
const
  row: array[0..11] of Byte = (0, 0, 0, 255, 0, 0, 0, 0, 255, 0, 0, 0);
var
  error: TKoPreciseError;
  options: TKoPreciseOptions;
  fileOptions: TKoPreciseFileOptions;
  fromProfile, toProfile: PKoPreciseProfile;
  link: PKoPreciseLink;
  printed: array[0..11] of Byte;
  at: Integer;
begin
  fromProfile := koPreciseOpenProfile(PAnsiChar(source), error);
  if fromProfile = nil then Fail(source + ': ' + error.text);
  toProfile := koPreciseOpenProfile(PAnsiChar(printer), error);
  if toProfile = nil then Fail(printer + ': ' + error.text);
  koPreciseInitOptions(options);
  options.preserve := KOLINK_PRESERVE_SECONDARIES;
  options.gridPoints := 17;
  link := koPreciseMakeLink(fromProfile, toProfile, nil, options, error);
  if link = nil then Fail(error.text);
  koPreciseLinkRow8(link, @row, @printed, 3);
  Write('black, white, cyan become');
  for at := 0 to 11 do Write(' ', printed[at]);
  WriteLn;
  FillChar(fileOptions, SizeOf(fileOptions), 0);
  fileOptions.size := SizeOf(fileOptions);
  fileOptions.date := 1700000000;
  if koPreciseSaveLink(link, PAnsiChar(output), fileOptions, error) = 0 then
    Fail(output + ': ' + error.text);
  koPreciseReleaseLink(link);
  koPreciseReleaseProfile(toProfile);
  koPreciseReleaseProfile(fromProfile);
end;

begin
  if ParamCount <> 4 then
  begin
    WriteLn('usage: host PRINTER.icc SOURCE.icc OUTPUT.icc PRECISE.icc');
    Halt(2);
  end;
  WriteLn('records of ', SizeOf(TCmsLinkSettings), ', ', SizeOf(TKoPreciseError), ', ',
    SizeOf(TKoPreciseOptions), ' bytes');
  Simple(ParamStr(1), ParamStr(2), ParamStr(3));
  Accurate(ParamStr(1), ParamStr(2), ParamStr(4));
end.
