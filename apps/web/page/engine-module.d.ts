declare module "vek0-engine" {
  const load: (settings: Record<string, unknown>) => Promise<unknown>;
  export default load;
}
