// What a row is, from its roles alone.

export const RowType = {
  Container: 1, // opens
  Audio: 3, // plays
  Editable: 101, // a text or a switch
  Action: 102,
  Header: 103,
  Separator: 105,
};

export const ContextMenu = 100; // container type

export const isFocusable = (row) =>
  !row || (row.type !== RowType.Header && row.type !== RowType.Separator);

export const isMenu = (row) => row.type === RowType.Container && row.containerType === ContextMenu;

export const metaData = (row) => row?.mediaData?.metaData ?? {};

export const isSwitch = (row) => row.type === RowType.Editable && typeof row.value?.bool === 'boolean';

// What something can be done with: what is shown only, or of a type nobody has heard of, is not.
export const isUsable = (row) => {
  if (row.type === RowType.Editable) return row.modifiable === true;
  return [RowType.Container, RowType.Audio, RowType.Action].includes(row.type);
};

// An editable text without a text yet makes something new.
export const isCreate = (row) => row.type === RowType.Editable && row.value?.string === '';

// What identifies a row across changes of its list.
export const rowKey = (row) => row?.path ?? null;

export const position = (row) => (Number.isInteger(row?.value?.i32) ? row.value.i32 : -1);

export function duration(milliseconds) {
  if (!(milliseconds > 0)) return '';
  const seconds = Math.round(milliseconds / 1000);
  const hours = Math.floor(seconds / 3600);
  const minutes = Math.floor(seconds / 60) % 60;
  const rest = String(seconds % 60).padStart(2, '0');
  return hours ? `${hours}:${String(minutes).padStart(2, '0')}:${rest}` : `${minutes}:${rest}`;
}

export function clock(milliseconds) {
  return duration(milliseconds) || '0:00';
}

// Letters without accents and case, for finding.
export const searchText = (text) =>
  text.normalize('NFD').replace(/\p{Mn}/gu, '').toLocaleLowerCase();
